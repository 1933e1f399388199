#pragma once

#include "platform/DesktopNotifications.h"
#include "platform/DispatchQueue.h"
#include "util/Log.h"

#include <chrono>
#include <memory>

namespace halvane::linux {

/// Notices through org.freedesktop.Notifications on the session bus. The bus may start that service; where there is none,
/// or no bus, or no answer in time, nothing is shown, and the first failure is one line in the log.
///
/// Each notice is a block on `queue`, which holds that thread for `deadline` at most. The connection is kept until the
/// end: desktops take away what was shown for a program that has left the bus. Destroying it waits for nothing; a notice
/// that is under way goes on. `log` outlives what waits in the queue.
class FreedesktopNotifications final : public platform::DesktopNotifications {
public:
    static constexpr std::chrono::milliseconds kDeadline{2000};

    /// `queue` is serial.
    FreedesktopNotifications(std::shared_ptr<platform::DispatchQueue> queue, util::Log& log,
                             std::chrono::milliseconds deadline = kDeadline);

    void show(const Notice& notice) override;

private:
    class Service;

    const std::shared_ptr<platform::DispatchQueue> queue_;
    const std::shared_ptr<Service> service_;
};

}  // namespace halvane::linux
