#pragma once

#include "device/HVDeviceInfoModel.h"
#include "platform/MainLoop.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace halvane::platform {
class SystemCounters;
}
namespace halvane::util {
class Log;
}

namespace halvane::device {

/// Samples how busy the processors are, once a second. The figure is the mean of the processors' own ratios
/// since the sample before; the first one tells of the time since the system started.
///
/// Main thread, where the callback comes too, after the model has the figure. The one callback is called at
/// every turn: when the counters cannot be read, with the figure of the last time. It may replace itself.
/// Nothing of the client stops the sampler; destroying it does.
class HVDeviceUsageInfoManager {
public:
    using CpuUsage = std::function<void(float percentage)>;

    /// All outlive it.
    struct Collaborators {
        platform::MainLoop& mainLoop;
        const platform::SystemCounters& counters;
        const HVDeviceInfoHelper& device;
        util::Log& log;
    };

    explicit HVDeviceUsageInfoManager(Collaborators collaborators) : to_(collaborators) {}

    /// The process-wide sampler; the assembly says how it is made.
    static HVDeviceUsageInfoManager& sharedManager();

    /// First sample after one second. Nothing happens while it samples already.
    void startCollectInfo();
    /// The next start goes on from the counters of the last sample.
    void stopCollectInfo();

    /// One turn: a sample, then the callback.
    void updateInfo();
    /// One sample, into the model. Counters that cannot be read are logged and change nothing.
    void cupUsageInfo();

    void setCpuUsagePercentage(CpuUsage callback) { cpuUsagePercentage_ = std::move(callback); }

    /// Its `cpuUsagePercentage` is the last figure, such as "12.34".
    [[nodiscard]] HVDeviceInfoModel& model();
    [[nodiscard]] HVDeviceInfoModel& getDeviceInfoModel() { return model(); }

private:
    /// Four for each processor: user, system, idle, nice. They wrap around.
    using Counters = std::vector<std::int32_t>;

    [[nodiscard]] std::optional<Counters> readCounters() const;
    /// Sum over the processors of the part of their time in which they worked.
    [[nodiscard]] float sumOfRatios() const;

    Collaborators to_;
    Counters cpuInfo_;
    Counters prevCpuInfo_;  ///< empty before the first sample
    std::uint32_t numCPUs_ = 1;
    std::unique_ptr<platform::MainLoop::Timer> updateTimer_;
    std::shared_ptr<std::mutex> CPUUsageLock_ = std::make_shared<std::mutex>();  ///< guards the counters and what is stored in the model
    CpuUsage cpuUsagePercentage_;
    std::unique_ptr<HVDeviceInfoModel> model_;  ///< made on first use
};

}  // namespace halvane::device
