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
constexpr int kOk = 200;

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
    const auto name = userName();
    if (!name) return;
    to_.factsQueue.async([this, alive = std::weak_ptr(alive_), &device = to_.device, mainLoop = to_.mainLoop, name = *name] {
        mainLoop->async([this, alive, name, serialNumber = device.getSerialNumber()] {
            if (!alive.expired() && userName() == name) ask(name, serialNumber);
        });
    });
}

void HVDeviceStatusMonitoring::ask(const std::string& userName, const std::optional<std::string>& serialNumber) {
    const auto onReply = [this, alive = std::weak_ptr(alive_), userName](const util::Value& response) {
        if (!alive.expired()) answered(userName, response);
    };
    to_.requests.reportLockOrReportTheLossWithParams({{"username", userName.substr(0, userName.find('@'))}, {"sn", serialNumber}}, onReply,
                                                     nullptr);
}

void HVDeviceStatusMonitoring::answered(const std::string& userName, const util::Value& response) {
    if (this->userName() != userName) return;
    if (util::integerOf(util::member(&response, "code")) != kOk) return;
    const util::Value* data = util::member(&response, "data");
    const util::Dictionary* status = data == nullptr ? nullptr : data->dictionary();
    if (status == nullptr || status->empty()) return;
    const auto callback = monitoringBlock_;  // it may register another one
    if (callback) callback(isYes(status->find("lock_status")), isYes(status->find("lose_status")));
}

std::optional<std::string> HVDeviceStatusMonitoring::userName() const {
    if (!to_.user.user_isLogin()) return std::nullopt;
    return to_.user.user_getUserInfo()->user_name.value_or("");
}

}  // namespace halvane::device
