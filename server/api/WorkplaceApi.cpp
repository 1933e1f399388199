#include "server/api/WorkplaceApi.h"

#include "server/Company.h"
#include "server/api/Authenticator.h"
#include "server/api/Envelope.h"

#include <string_view>

namespace halvane::server {

ApiReply WorkplaceApi::list(const ApiRequest& request) {
    if (!authenticator_.bySession(request)) return Envelope::signedOut();
    util::Value::List workplaces;
    for (const auto& [value, name] : company_.workplaces.all()) workplaces.push_back(util::Dictionary{{"name", name}, {"value", value}});
    return Envelope::succeeded("查询成功", {{"work_address_list", std::move(workplaces)}});
}

ApiReply WorkplaceApi::choose(const ApiRequest& request) {
    const auto value = request.query.find("work_address");
    if (value == request.query.end()) return Envelope::malformed("query \"work_address\" is missing");
    const auto user = authenticator_.bySession(request);
    if (!user) return Envelope::signedOut();
    if (request.path.substr(std::string_view(kAddressPath).size()) != std::to_string(user->id)) return Envelope::notAllowed();
    if (!company_.workplaces.has(value->second)) return Envelope::refused(ReplyCode::UnknownWorkplace, "没有这个职场");
    company_.users.setWorkAddress(user->id, value->second);
    return Envelope::succeeded("职场已更新");
}

}  // namespace halvane::server
