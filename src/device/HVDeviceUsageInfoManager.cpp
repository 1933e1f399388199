#include "device/HVDeviceUsageInfoManager.h"

#include "platform/SystemCounters.h"
#include "util/Log.h"
#include "util/SharedInstance.h"
#include "util/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <utility>

namespace halvane::device {

namespace {

constexpr std::chrono::milliseconds kInterval{1000};

enum Counter : std::size_t { User, System, Idle, Nice, kCounters };

/// Counters of 32 bits, as these figures are made of: what is beyond wraps around.
std::int32_t wrapped(std::uint64_t ticks) { return static_cast<std::int32_t>(static_cast<std::uint32_t>(ticks)); }

std::int32_t difference(std::int32_t now, std::int32_t before) {
    return wrapped(std::uint64_t{static_cast<std::uint32_t>(now)} - static_cast<std::uint32_t>(before));
}

}  // namespace

HVDeviceUsageInfoManager& HVDeviceUsageInfoManager::sharedManager() { return util::SharedInstance<HVDeviceUsageInfoManager>::get(); }

HVDeviceInfoModel& HVDeviceUsageInfoManager::model() {
    if (!model_) model_ = std::make_unique<HVDeviceInfoModel>(to_.device);
    return *model_;
}

void HVDeviceUsageInfoManager::startCollectInfo() {
    if (updateTimer_) return;
    numCPUs_ = std::max(to_.counters.processorCount().value_or(1), std::uint32_t{1});
    CPUUsageLock_ = std::make_shared<std::mutex>();
    updateTimer_ = to_.mainLoop.every(kInterval, [this] { updateInfo(); });
}

void HVDeviceUsageInfoManager::stopCollectInfo() { updateTimer_.reset(); }

void HVDeviceUsageInfoManager::updateInfo() {
    cupUsageInfo();
    const auto callback = cpuUsagePercentage_;  // it may register another one
    if (!callback) return;
    const std::string text = util::replaced(model().cpuUsagePercentage().value_or(""), "%", "");
    float figure = 0;
    (void)std::from_chars(text.data(), text.data() + text.size(), figure);  // whatever sign the desktop's language has for a point
    callback(figure);
}

void HVDeviceUsageInfoManager::cupUsageInfo() {
    auto counters = readCounters();
    if (!counters) {
        to_.log.write("Error!");
        return;
    }
    cpuInfo_ = *std::move(counters);
    {
        const auto held = CPUUsageLock_;
        const std::lock_guard lock(*held);
        const float usage = sumOfRatios() * 100 / static_cast<float>(numCPUs_);
        model().setCpuUsagePercentage(fmt::format("{:.2f}", usage));
    }
    prevCpuInfo_ = std::exchange(cpuInfo_, {});
}

std::optional<HVDeviceUsageInfoManager::Counters> HVDeviceUsageInfoManager::readCounters() const {
    const auto processors = to_.counters.processors();
    if (!processors) return std::nullopt;
    Counters counters;
    counters.reserve(processors->size() * kCounters);
    for (const auto& processor : *processors)
        for (const std::uint64_t ticks : {processor.user, processor.system, processor.idle, processor.nice})
            counters.push_back(wrapped(ticks));
    return counters;
}

float HVDeviceUsageInfoManager::sumOfRatios() const {
    // Processors may be switched on and off while the system runs; the counters before are then others' counters.
    const bool comparable = prevCpuInfo_.size() == cpuInfo_.size();
    const std::size_t processors = std::min<std::size_t>(numCPUs_, cpuInfo_.size() / kCounters);
    float total = 0;
    for (std::size_t processor = 0; processor < processors; ++processor) {
        const auto ticks = [&](Counter counter) -> std::int64_t {
            const std::size_t at = processor * kCounters + counter;
            if (!comparable) return static_cast<std::uint32_t>(cpuInfo_[at]);
            // The kernel takes back waiting time that it counted too early.
            return std::max(difference(cpuInfo_[at], prevCpuInfo_[at]), 0);
        };
        const auto inUse = static_cast<float>(ticks(User) + ticks(System) + ticks(Nice));
        const float whole = inUse + static_cast<float>(ticks(Idle));
        if (whole != 0) total += inUse / whole;
    }
    return total;
}

}  // namespace halvane::device
