#pragma once

#include "util/Bytes.h"

#include <openssl/crypto.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pkcs12.h>
#include <openssl/x509.h>

#include <memory>

/// Ownership and encoding of the library's objects.
namespace halvane::systools::openssl {

template <auto Free>
struct Release {
    template <typename T>
    void operator()(T* object) const {
        Free(object);
    }
};

template <typename Stack, typename Element, void (*Free)(Element*)>
struct ReleaseStack {
    void operator()(Stack* stack) const {
        OPENSSL_sk_pop_free(reinterpret_cast<OPENSSL_STACK*>(stack), reinterpret_cast<OPENSSL_sk_freefunc>(Free));
    }
};

using X509Pointer = std::unique_ptr<X509, Release<X509_free>>;
using BioPointer = std::unique_ptr<BIO, Release<BIO_free_all>>;
using KeyPointer = std::unique_ptr<EVP_PKEY, Release<EVP_PKEY_free>>;
using Pkcs8Pointer = std::unique_ptr<PKCS8_PRIV_KEY_INFO, Release<PKCS8_PRIV_KEY_INFO_free>>;
using Pkcs12Pointer = std::unique_ptr<PKCS12, Release<PKCS12_free>>;
using X509Stack = std::unique_ptr<STACK_OF(X509), ReleaseStack<STACK_OF(X509), X509, X509_free>>;
using Pkcs7Stack = std::unique_ptr<STACK_OF(PKCS7), ReleaseStack<STACK_OF(PKCS7), PKCS7, PKCS7_free>>;
using SafeBagStack = std::unique_ptr<STACK_OF(PKCS12_SAFEBAG), ReleaseStack<STACK_OF(PKCS12_SAFEBAG), PKCS12_SAFEBAG, PKCS12_SAFEBAG_free>>;

/// DER of `object` by its i2d function; empty when it cannot be encoded.
template <typename T>
util::Bytes encoded(T* object, int (*encode)(const T*, unsigned char**)) {
    unsigned char* der = nullptr;
    const int length = object == nullptr ? -1 : encode(object, &der);
    if (length < 0) return {};
    util::Bytes bytes(reinterpret_cast<const char*>(der), static_cast<std::size_t>(length));
    // It may have been a private key.
    OPENSSL_clear_free(der, static_cast<std::size_t>(length));
    return bytes;
}

/// The reason of the oldest error of this thread, and an empty queue; 0 without an error.
inline int takeErrors() {
    const unsigned long first = ERR_peek_error();
    ERR_clear_error();
    return ERR_GET_REASON(first);
}

}  // namespace halvane::systools::openssl
