#pragma once

#include "server/api/Message.h"

namespace halvane::server {

class Authenticator;
class Company;
struct User;

/// What concerns one computer of a signed-in user: whether it is locked or lost, and the security code
/// that allows to remove the client from it. Any thread.
class EquipmentApi {
public:
    EquipmentApi(Company& company, Authenticator& authenticator) : company_(company), authenticator_(authenticator) {}

    ApiReply status(const ApiRequest& request);
    /// Mails a new code to the user.
    ApiReply applyForUninstall(const ApiRequest& request);
    ApiReply confirmUninstall(const ApiRequest& request);

private:
    void mailCode(const User& user, const std::string& hostName, const std::string& code);

    Company& company_;
    Authenticator& authenticator_;
};

}  // namespace halvane::server
