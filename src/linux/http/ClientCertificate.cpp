#include "linux/http/ClientCertificate.h"

#include <openssl/err.h>
#include <openssl/pkcs12.h>

#include <limits>
#include <memory>

namespace halvane::linux_http {

ClientCertificate readClientCertificate(const platform::ClientIdentity& identity) {
    if (identity.pkcs12.empty() || identity.pkcs12.size() > static_cast<std::size_t>(std::numeric_limits<long>::max())) return {};
    // What goes wrong in here is no failure of the handshake that is under way on this thread.
    ERR_set_mark();
    const auto* bytes = reinterpret_cast<const unsigned char*>(identity.pkcs12.data());
    const std::unique_ptr<PKCS12, decltype(&PKCS12_free)> file(d2i_PKCS12(nullptr, &bytes, static_cast<long>(identity.pkcs12.size())),
                                                               &PKCS12_free);
    ClientCertificate result;
    const char* passphrase = identity.passphrase ? identity.passphrase->c_str() : nullptr;
    if (file && PKCS12_parse(file.get(), passphrase, &result.key, &result.certificate, nullptr) == 1 &&
        (result.key == nullptr || result.certificate == nullptr)) {
        EVP_PKEY_free(result.key);
        X509_free(result.certificate);
        result = {};
    }
    ERR_pop_to_mark();
    return result;
}

}  // namespace halvane::linux_http
