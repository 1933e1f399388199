#pragma once

#include "server/api/Message.h"

namespace halvane::server {

class Authenticator;
class Company;

/// The offices, and in which one a user works. Any thread.
class WorkplaceApi {
public:
    static constexpr const char* kAddressPath = "/api/client/user/work_address/";  ///< the user's number follows

    WorkplaceApi(Company& company, Authenticator& authenticator) : company_(company), authenticator_(authenticator) {}

    /// All workplaces; the page asked for makes no difference.
    ApiReply list(const ApiRequest& request);
    /// Moves the signed-in user, and nobody else, to a known workplace.
    ApiReply choose(const ApiRequest& request);

private:
    Company& company_;
    Authenticator& authenticator_;
};

}  // namespace halvane::server
