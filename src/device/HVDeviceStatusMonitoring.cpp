#include "device/HVDeviceStatusMonitoring.h"

#include "device/HVDeviceInfoHelper.h"
#include "service/HVRequstHelper.h"
#include "session/HDCLUserConfig.h"
#include "util/SharedInstance.h"
#include "util/Value.h"

#include <utility>

namespace halvane::device {

namespace {

constexpr std::chrono::milliseconds kInterval{30'000};

/// Exactly this word; in any other spelling it is no.
bool isYes(const util::Value* value) { return util::textOf(value) == "Yes"; }

}  // namespace

HVDeviceStatusMonitoring::HVDeviceStatusMonitoring(Collaborators collaborators)
    : to_(std::move(collaborators)), alive_(std::make_shared<const bool>(true)) {}

HVDeviceStatusMonitoring::~HVDeviceStatusMonitoring() = default;

HVDeviceStatusMonitoring& HVDeviceStatusMonitoring::sharedMonitoring() { return util::SharedInstance<HVDeviceStatusMonitoring>::get(); }

void HVDeviceStatusMonitoring::startMonitoring() {
    if (!timer_) timer_ = to_.mainLoop->every(kInterval, [this] { deviceMonitoring(); });
}

void HVDeviceStatusMonitoring::stopMonitoring() { timer_.reset(); }

void HVDeviceStatusMonitoring::deviceMonitoring() {
    const auto who = session();
    if (!who) return;
    to_.factsQueue.async([this, alive = std::weak_ptr(alive_), &device = to_.device, mainLoop = to_.mainLoop, who = *who] {
        mainLoop->async([this, alive, who, serialNumber = device.getSerialNumber()] {
            if (!alive.expired() && session() == who) ask(who, serialNumber);
        });
    });
}

void HVDeviceStatusMonitoring::ask(const Session& who, const std::optional<std::string>& serialNumber) {
    const auto onReply = [this, alive = std::weak_ptr(alive_), who](const util::Value& response) {
        if (!alive.expired()) answered(who, response);
    };
    const std::string name = who.userName.substr(0, who.userName.find('@'));
    to_.requests.reportLockOrReportTheLossWithParams({{"username", name}, {"sn", serialNumber}}, onReply, nullptr);
}

void HVDeviceStatusMonitoring::answered(const Session& who, const util::Value& response) {
    if (session() != who) return;
    if (!service::HVRequstHelper::isAccepted(response)) return;
    const util::Value* data = util::member(&response, "data");
    const util::Dictionary* status = data == nullptr ? nullptr : data->dictionary();
    if (status == nullptr || status->empty()) return;
    const auto callback = monitoringBlock_;  // it may register another one
    if (callback) callback(isYes(status->find("lock_status")), isYes(status->find("lose_status")));
}

std::optional<HVDeviceStatusMonitoring::Session> HVDeviceStatusMonitoring::session() const {
    if (!to_.user.user_isLogin()) return std::nullopt;
    const auto* user = to_.user.user_getUserInfo();
    return Session{user->user_name.value_or(""), user->token.value_or("")};
}

}  // namespace halvane::device
