#include "device/DeviceStateNotices.h"

#include "platform/DesktopNotifications.h"

#include <utility>

namespace halvane::device {

namespace {

using Notice = platform::DesktopNotifications::Notice;

// One subject for both: the computer is in one state, and a notice of an older one would be wrong.
constexpr const char* kSubject = "state of this computer";

Notice lockedNotice() {
    return {.subject = kSubject,
            .summary = "这台电脑已被锁定",
            .body = "公司证书将从这台电脑删除，公司网络不再可用。请联系 IT 服务台。",
            .urgency = platform::DesktopNotifications::Urgency::Critical};
}

Notice lostNotice() {
    return {.subject = kSubject,
            .summary = "这台电脑已被标记为丢失",
            .body = "您已被退出登录。如果电脑就在您手边，请联系 IT 服务台。",
            .urgency = platform::DesktopNotifications::Urgency::Critical};
}

}  // namespace

void DeviceStateNotices::stateIs(bool locked, bool lost) {
    const State state = lost ? State::Lost : locked ? State::Locked : State::Free;
    if (std::exchange(told_, state) == state) return;
    switch (state) {
        case State::Free:
            return;
        case State::Locked:
            return desktop_.show(lockedNotice());
        case State::Lost:
            return desktop_.show(lostNotice());
    }
}

}  // namespace halvane::device
