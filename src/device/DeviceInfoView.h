#pragma once

#include "device/CpuWave.h"
#include "ui/widgets/PageView.h"
#include "util/StyledText.h"
#include "util/Value.h"

#include <memory>
#include <optional>
#include <string>

namespace halvane::platform {
class DispatchQueue;
}
namespace halvane::ui {
class ElidedLabel;
class ImageView;
}  // namespace halvane::ui

namespace halvane::device {

class HardwareSummaryView;
class HVDeviceInfoHelper;
class HVDeviceUsageInfoManager;
class UsageChartView;
class UsageRingView;

/// The page of this computer: what it is, how full its disk and memory are, how busy its processors were. Once
/// made it starts the sampler and is told of every sample, in place of an earlier page. While it is hidden it
/// keeps count and draws nothing. Main thread.
class DeviceInfoView final : public ui::PageView {
public:
    struct Collaborators {
        HVDeviceUsageInfoManager& sampler;
        const HVDeviceInfoHelper& device;  ///< must outlive what waits on the queue
        /// What the computer is comes from programs that take their time.
        platform::DispatchQueue& factsQueue;
        std::shared_ptr<platform::DispatchQueue> mainQueue;
    };

    explicit DeviceInfoView(Collaborators collaborators);

    [[nodiscard]] const CpuWave& wave() const { return wave_; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    /// Of the disk or the memory, in GiB; absent where the computer does not tell.
    struct Filling {
        std::optional<std::string> used, free, total;
    };

    void setUpUI();
    void requestSummary();
    void runWave();
    void tick(float usage);
    void runWave(float usage);
    void updateDiskData();
    void updateMemoryData();
    [[nodiscard]] static std::string centerText(const Filling& filling);
    static void updateDataWithUsed(const Filling& filling, UsageRingView& view);
    [[nodiscard]] QString description() const;
    /// Brings what is shown up to date.
    void refresh();
    [[nodiscard]] QRect cpuCard() const;

    Collaborators to_;
    CpuWave wave_;
    std::optional<float> usage_;  ///< absent before the first sample; until then the two below are nothing either
    Filling disk_;
    Filling memory_;
    bool seen_ = false;

    ui::ImageView* computerView = nullptr;
    HardwareSummaryView* infoTextView = nullptr;
    UsageRingView* diskView = nullptr;
    UsageRingView* memoryView = nullptr;
    ui::ElidedLabel* cpuLabel = nullptr;
    UsageChartView* lineChartView = nullptr;
};

}  // namespace halvane::device
