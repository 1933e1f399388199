#include "server/api/SignInApi.h"

#include "server/Company.h"
#include "server/api/Authenticator.h"
#include "server/api/Envelope.h"
#include "server/api/RequestFields.h"
#include "util/Text.h"

namespace halvane::server {

SignInApi::SignInApi(Company& company, Authenticator& authenticator, std::string baseUrl)
    : company_(company), authenticator_(authenticator), baseUrl_(std::move(baseUrl)) {}

ApiReply SignInApi::login(const ApiRequest& request) {
    RequestFields fields(request);
    const std::string name = fields.text("username");
    const std::string password = fields.text("password");
    // Clients end the address with a bar, also when they have none.
    const ComputerStore::Facts computer{.sn = fields.optionalText("sn"),
                                        .mac = util::replaced(fields.optionalText("mac"), "|", ""),
                                        .hostName = fields.optionalText("host_name"),
                                        .system = fields.optionalText("system")};
    static_cast<void>(fields.optionalText("token"));
    if (fields.problem()) return Envelope::malformed(*fields.problem());

    const auto outcome = authenticator_.byPassword(name, password);
    if (const auto* refusal = std::get_if<ApiReply>(&outcome)) return *refusal;
    const User& user = std::get<User>(outcome);
    company_.computers.signedIn(computer, user.id);
    return Envelope::succeeded("登录成功", {{"department_name", user.departmentName},
                                            {"email", user.userName},
                                            {"header_img", baseUrl_ + "/static/avatar/" + std::to_string(user.id) + ".svg"},
                                            {"numId", std::to_string(user.id)},
                                            {"job_number", user.jobNumber},
                                            {"nick_name", user.nickName},
                                            {"role_id", user.roleId},
                                            {"role_name", user.roleName},
                                            {"status", user.status},
                                            {"token", company_.sessions.open(user.id)},
                                            {"user_name", user.userName},
                                            {"work_address", user.workAddress},
                                            {"ad_cert_name", user.certificateFileName()}});
}

}  // namespace halvane::server
