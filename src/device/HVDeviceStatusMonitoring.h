#pragma once

#include "platform/MainLoop.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace halvane::service {
class HVRequstHelper;
}
namespace halvane::session {
class HDCLUserConfig;
}
namespace halvane::util {
class Value;
}

namespace halvane::device {

class HVDeviceInfoHelper;

/// Asks the company server every 30 seconds whether this computer was marked as locked or lost. The first
/// question goes out 30 seconds after the start. While nobody is signed in nothing is asked; a reply that
/// arrives after that person's session ended is dropped, as is everything that is no answer.
///
/// Main thread, where the callback comes too: at every answer, also when both flags are false. It may replace
/// itself. Questions do not wait for each other's answers. The serial number may come from a system service
/// that takes its time, so it is read on `factsQueue`; the objects below must outlive what waits there. After
/// it is destroyed nothing is asked or answered.
class HVDeviceStatusMonitoring {
public:
    using Monitoring = std::function<void(bool locked, bool lost)>;

    struct Collaborators {
        std::shared_ptr<platform::MainLoop> mainLoop;
        platform::DispatchQueue& factsQueue;
        session::HDCLUserConfig& user;
        service::HVRequstHelper& requests;
        const HVDeviceInfoHelper& device;
    };

    explicit HVDeviceStatusMonitoring(Collaborators collaborators);
    ~HVDeviceStatusMonitoring();
    HVDeviceStatusMonitoring(const HVDeviceStatusMonitoring&) = delete;
    HVDeviceStatusMonitoring& operator=(const HVDeviceStatusMonitoring&) = delete;

    /// The process-wide watch; the assembly says how it is made.
    static HVDeviceStatusMonitoring& sharedMonitoring();

    /// Nothing happens while it watches already.
    void startMonitoring();
    void stopMonitoring();

    /// One question.
    void deviceMonitoring();

    void setMonitoringBlock(Monitoring callback) { monitoringBlock_ = std::move(callback); }

private:
    /// Who is signed in, since one login.
    struct Session {
        std::string userName;
        std::string token;
        friend bool operator==(const Session&, const Session&) = default;
    };

    void ask(const Session& who, const std::optional<std::string>& serialNumber);
    void answered(const Session& who, const util::Value& response);
    /// Absent while nobody is signed in.
    [[nodiscard]] std::optional<Session> session() const;

    Collaborators to_;
    Monitoring monitoringBlock_;
    std::unique_ptr<platform::MainLoop::Timer> timer_;
    std::shared_ptr<const bool> alive_;
};

}  // namespace halvane::device
