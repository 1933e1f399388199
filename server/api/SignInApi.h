#pragma once

#include "server/api/Message.h"

#include <string>

namespace halvane::server {

class Authenticator;
class Company;

/// Opens sessions. Any thread.
class SignInApi {
public:
    /// `baseUrl`: how clients reach this server, without a trailing slash.
    SignInApi(Company& company, Authenticator& authenticator, std::string baseUrl);

    /// Answers the user's record with a new token, and notes the computer.
    ApiReply login(const ApiRequest& request);

private:
    Company& company_;
    Authenticator& authenticator_;
    const std::string baseUrl_;
};

}  // namespace halvane::server
