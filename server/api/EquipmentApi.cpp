#include "server/api/EquipmentApi.h"

#include "server/Company.h"
#include "server/api/Authenticator.h"
#include "server/api/Envelope.h"
#include "server/api/RequestFields.h"
#include "util/Text.h"

namespace halvane::server {

namespace {

bool names(const User& user, const std::string& typed) {
    const auto name = util::lowercasedAscii(typed);
    return name == user.shortName || name == user.userName;
}

util::Value yesOrNo(bool yes) { return yes ? "Yes" : "No"; }

}  // namespace

ApiReply EquipmentApi::status(const ApiRequest& request) {
    RequestFields fields(request);
    const std::string name = fields.text("username");
    const std::string sn = fields.optionalText("sn");
    if (fields.problem()) return Envelope::malformed(*fields.problem());
    const auto user = authenticator_.bySession(request);
    if (!user) return Envelope::signedOut();
    if (!names(*user, name)) return Envelope::notAllowed();

    const Computer computer = company_.computers.reported(sn, user->id).value_or(Computer());
    return Envelope::succeeded("查询成功", {{"lock_status", yesOrNo(computer.locked)}, {"lose_status", yesOrNo(computer.lost)}});
}

ApiReply EquipmentApi::applyForUninstall(const ApiRequest& request) {
    RequestFields fields(request);
    const std::string name = fields.text("username");
    const std::string hostName = fields.optionalText("host_name");
    static_cast<void>(fields.optionalText("sn"));
    if (fields.problem()) return Envelope::malformed(*fields.problem());
    const auto user = authenticator_.bySession(request);
    if (!user) return Envelope::signedOut();
    if (!names(*user, name)) return Envelope::notAllowed();

    mailCode(*user, hostName, company_.uninstallCodes.make(user->id, hostName));
    return Envelope::succeeded("安全码已发送");
}

ApiReply EquipmentApi::confirmUninstall(const ApiRequest& request) {
    RequestFields fields(request);
    const std::string name = fields.text("username");
    const std::string hostName = fields.optionalText("host_name");
    const std::string code = fields.optionalText("uninstall_num");
    if (fields.problem()) return Envelope::malformed(*fields.problem());
    const auto user = authenticator_.bySession(request);
    if (!user) return Envelope::signedOut();
    if (!names(*user, name)) return Envelope::notAllowed();

    switch (company_.uninstallCodes.use(user->id, hostName, code)) {
        case UninstallCodeStore::Verdict::Accepted:
            return Envelope::succeeded("验证通过");
        case UninstallCodeStore::Verdict::Wrong:
            return Envelope::refused(ReplyCode::WrongCode, "安全码错误");
        case UninstallCodeStore::Verdict::NoCode:
            break;
    }
    return Envelope::refused(ReplyCode::NoCode, "安全码已失效，请重新申请");
}

void EquipmentApi::mailCode(const User& user, const std::string& hostName, const std::string& code) {
    company_.outbox.put({.to = user.userName,
                         .subject = "Halvane 卸载安全码",
                         .text = user.nickName + "，您好：\n\n您正在申请从电脑 " + hostName + " 卸载 Halvane。安全码：" + code +
                                 "\n安全码十分钟内有效，只能使用一次。\n\n如非本人操作，请立即联系信息技术部。"});
}

}  // namespace halvane::server
