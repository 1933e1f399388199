#pragma once

#include "server/api/Authenticator.h"
#include "server/api/CertificateApi.h"
#include "server/api/EquipmentApi.h"
#include "server/api/Message.h"
#include "server/api/SignInApi.h"
#include "server/api/UpdateApi.h"
#include "server/api/WorkplaceApi.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace halvane::server {

class Company;

/// All operations of the company server behind one call: finds the operation by method and path. Any thread.
class CompanyApi {
public:
    CompanyApi(Company& company, const std::string& baseUrl);

    /// Always answers: what goes wrong inside becomes a reply with status 500, its reason goes to
    /// standard error and not to the client.
    ApiReply handle(const ApiRequest& request);

    /// The path as it may stand in a log: without the secret part of a download's address.
    static std::string pathForLog(const std::string& path);

private:
    enum class Match { WholePath, Beginning };
    struct Route {
        std::string_view method;
        std::string_view path;
        Match match;
        std::function<ApiReply(const ApiRequest&)> operation;
    };
    ApiReply dispatch(const ApiRequest& request);

    Authenticator authenticator_;
    SignInApi signIn_;
    WorkplaceApi workplaces_;
    CertificateApi certificates_;
    EquipmentApi equipment_;
    UpdateApi updates_;
    const std::vector<Route> routes_;
};

}  // namespace halvane::server
