#pragma once

#include "server/api/Message.h"

#include <string>

namespace halvane::server {

class Authenticator;
class Company;

/// Personal certificates. Any thread.
class CertificateApi {
public:
    static constexpr const char* kDownloadPath = "/static/ad_cert/";  ///< a secret and a file name follow

    CertificateApi(Company& company, Authenticator& authenticator, std::string baseUrl);

    /// Issues a certificate, by user and password alone: the client asks while it signs in, before it
    /// keeps the new session. Every request issues anew and voids the address before.
    ApiReply create(const ApiRequest& request);
    /// The file, for whoever knows its address.
    ApiReply download(const ApiRequest& request);

private:
    Company& company_;
    Authenticator& authenticator_;
    const std::string baseUrl_;
};

}  // namespace halvane::server
