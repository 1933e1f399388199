#pragma once

#include <openssl/evp.h>
#include <openssl/pkcs12.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace halvane::server {

/// The library refused something that our own input cannot make it refuse: no memory, no randomness, a
/// broken installation. Nothing a caller could mend; the request or command as a whole fails.
class CryptoError : public std::runtime_error {
public:
    /// `subject` is what could not be done; the library's own reason follows it.
    explicit CryptoError(const std::string& subject);
};

template <auto Free>
struct OpenSslDeleter {
    template <typename T>
    void operator()(T* object) const {
        Free(object);
    }
};
using KeyPtr = std::unique_ptr<EVP_PKEY, OpenSslDeleter<EVP_PKEY_free>>;
using X509Ptr = std::unique_ptr<X509, OpenSslDeleter<X509_free>>;
using Pkcs12Ptr = std::unique_ptr<PKCS12, OpenSslDeleter<PKCS12_free>>;
using BioPtr = std::unique_ptr<BIO, OpenSslDeleter<BIO_free_all>>;

/// Throws CryptoError unless `ok`.
void require(bool ok, const char* subject);
/// All that was written into a memory BIO.
std::string contentOf(BIO* memory);

}  // namespace halvane::server
