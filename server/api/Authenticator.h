#pragma once

#include "server/api/LoginThrottle.h"
#include "server/api/Message.h"
#include "server/store/UserStore.h"

#include <optional>
#include <string>
#include <variant>

namespace halvane::server {

class Company;

/// Tells who is asking: by user and password, or by the session's token. Any thread.
class Authenticator {
public:
    explicit Authenticator(Company& company);

    /// The user, or the reply that refuses. `name` is the login name or the part before its "@". An
    /// unknown user costs as much time as a wrong password.
    std::variant<User, ApiReply> byPassword(const std::string& name, const std::string& password);

    /// The user of the request's session; absent when there is none or it has ended.
    std::optional<User> bySession(const ApiRequest& request);

private:
    Company& company_;
    LoginThrottle throttle_;
};

}  // namespace halvane::server
