#include "tools/UninstallAuthorisation.h"

#include "device/HVDeviceInfoHelper.h"
#include "platform/DispatchQueue.h"
#include "service/HVRequstHelper.h"
#include "session/HDCLUserConfig.h"
#include "util/Text.h"
#include "util/Value.h"

#include <utility>

namespace halvane::tools {

namespace {

using Reply = UninstallAuthorisation::Reply;
using Kind = Reply::Kind;

using service::HVRequstHelper;

std::optional<Reply> codeReply(const util::Value& response) {
    return HVRequstHelper::isAccepted(response) ? std::optional(Reply{Kind::CodeSent, "安全码已发送至您的工作手机或邮箱"}) : std::nullopt;
}

std::optional<Reply> verdict(const util::Value& response) {
    if (HVRequstHelper::isAccepted(response)) return Reply{Kind::Authorised, "卸载成功"};
    return Reply{Kind::Refused, util::printed(util::textOf(util::member(&response, "msg")))};
}

std::string hostName(const device::HVDeviceInfoHelper& device) { return util::withoutLineFeeds(device.getLocalHostName().value_or("")); }

}  // namespace

UninstallAuthorisation::UninstallAuthorisation(Collaborators collaborators)
    : to_(std::move(collaborators)), alive_(std::make_shared<const bool>(true)) {}

UninstallAuthorisation::~UninstallAuthorisation() = default;

void UninstallAuthorisation::applyVertifyCode(Answer answer) {
    gather(
        [userName = userName()](const device::HVDeviceInfoHelper& device) {
            return util::Dictionary{{"username", userName}, {"host_name", hostName(device)}, {"sn", device.getSerialNumber()}};
        },
        [this, onReply = answering(codeReply, std::move(answer))](const util::Dictionary& params) {
            to_.requests.applyUnInstallCodeWithParams(params, onReply, nullptr);
        });
}

void UninstallAuthorisation::verify(const std::string& code, Answer answer) {
    if (code.empty()) {
        answer({Kind::Refused, "请输入卸载码"});
        return;
    }
    gather(
        [userName = userName(), code](const device::HVDeviceInfoHelper& device) {
            return util::Dictionary{{"username", userName}, {"host_name", hostName(device)}, {"uninstall_num", code}};
        },
        [this, onReply = answering(verdict, std::move(answer))](const util::Dictionary& params) {
            to_.requests.verifyUnInstallWithParams(params, onReply, nullptr);
        });
}

void UninstallAuthorisation::gather(Facts facts, Send send) {
    // What the window handed in moves along, so that it is released on the main thread again.
    to_.toolQueue.async([alive = std::weak_ptr(alive_), &device = to_.device, mainQueue = to_.mainQueue, facts = std::move(facts),
                         send = std::move(send)]() mutable {
        mainQueue->async([alive = std::move(alive), params = facts(device), send = std::move(send)] {
            if (!alive.expired()) send(params);
        });
    });
}

UninstallAuthorisation::OnReply UninstallAuthorisation::answering(Reading reading, Answer answer) const {
    return [alive = std::weak_ptr(alive_), reading, answer = std::move(answer)](const util::Value& response) {
        if (alive.expired()) return;
        if (const auto reply = reading(response)) answer(*reply);
    };
}

std::string UninstallAuthorisation::userName() const {
    const session::HDCLUserModel* user = to_.user.user_getUserInfo();
    const std::string whole = user == nullptr ? "" : user->user_name.value_or("");
    const std::string name = whole.substr(0, whole.find('@'));
    return name.empty() ? whole : name;
}

}  // namespace halvane::tools
