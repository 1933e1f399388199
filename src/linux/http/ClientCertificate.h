#pragma once

#include "platform/HttpTls.h"

using X509 = struct x509_st;
using EVP_PKEY = struct evp_pkey_st;

namespace halvane::linux_http {

/// Certificate and key of a PKCS#12 file; the caller owns one reference of each. Both null when the
/// bytes do not parse, the pass phrase is wrong or one of the two is missing.
struct ClientCertificate {
    X509* certificate = nullptr;
    EVP_PKEY* key = nullptr;
};

ClientCertificate readClientCertificate(const platform::ClientIdentity& identity);

}  // namespace halvane::linux_http
