#pragma once

namespace halvane::platform {
class DesktopNotifications;
}

namespace halvane::device {

/// Tells the person when this computer's state changes to locked or to lost; not again while it stays so.
///
/// Lost and locked together are one notice, that of the loss: it signs the person out in front of their eyes, and only
/// who has the computer found can do anything about the lock. The lock is told when the loss alone is over.
///
/// For one session: the next one makes its own, and is told what it finds. Main thread; `desktop` outlives it.
class DeviceStateNotices {
public:
    explicit DeviceStateNotices(platform::DesktopNotifications& desktop) : desktop_(desktop) {}

    /// What the company server said, at every answer.
    void stateIs(bool locked, bool lost);

private:
    enum class State { Free, Locked, Lost };

    platform::DesktopNotifications& desktop_;
    State told_ = State::Free;
};

}  // namespace halvane::device
