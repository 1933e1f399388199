#include "device/DeviceInfoView.h"

#include "device/HVDeviceInfoHelper.h"
#include "device/HVDeviceUsageInfoManager.h"
#include "device/HardwareSummaryView.h"
#include "device/UsageChartView.h"
#include "device/UsageRingView.h"
#include "platform/DispatchQueue.h"
#include "ui/widgets/CardGround.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/ImageView.h"

#include <fmt/format.h>

#include <QPainter>
#include <QPointer>
#include <algorithm>
#include <cstdlib>
#include <utility>

namespace halvane::device {

namespace {

using C = ui::HDCLUICenter;

constexpr int kPageHeight = 616;  // in the smallest window; a higher page gives the rest to rings and line
constexpr int kTop = 28;
constexpr QSize kPicture(188, 160);
constexpr int kPictureGap = 36;
constexpr int kRingTop = 208;
constexpr int kRingHeight = 196;
constexpr int kMostRingGrowth = 84;
constexpr int kMostLineGrowth = 360;
constexpr int kGap = 16;
constexpr int kCpuHeight = 164;
constexpr int kPadding = 20;
constexpr int kLabelTop = 12;
constexpr int kLabelHeight = 24;
constexpr int kPlotTop = 41;
constexpr int kPlotMargin = 10;  // below and to the right

/// How far the parts grow on a page higher than the least, one after the other.
struct Growth {
    explicit Growth(int height)
        : rings(std::clamp((height - kPageHeight) / 2, 0, kMostRingGrowth)),
          line(std::clamp(height - kPageHeight - rings, 0, kMostLineGrowth)) {}
    int rings;
    int line;
};

std::string shown(const std::optional<std::string>& value) { return value.value_or("--"); }

/// The whole part of a number in text; 0 for anything else.
int integerPart(const std::optional<std::string>& value) {
    constexpr long kMost = 1'000'000'000;
    return static_cast<int>(std::clamp(std::strtol(value.value_or("").c_str(), nullptr, 10), -kMost, kMost));
}

}  // namespace

DeviceInfoView::DeviceInfoView(Collaborators collaborators)
    : PageView(QStringLiteral("设备"), Ground::White), to_(std::move(collaborators)) {
    setObjectName(QStringLiteral("deviceInfoView"));
    setUpUI();
    requestSummary();
    runWave();
}

void DeviceInfoView::setUpUI() {
    computerView = new ui::ImageView(QStringLiteral("computer"), this);
    infoTextView = new HardwareSummaryView(this);
    diskView = new UsageRingView(QStringLiteral("硬盘"), this);
    diskView->setObjectName(QStringLiteral("diskView"));
    memoryView = new UsageRingView(QStringLiteral("内存"), this);
    memoryView->setObjectName(QStringLiteral("memoryView"));
    cpuLabel = new ui::ElidedLabel(QString(), C::font(C::Type::Body), C::colorText1, this);
    cpuLabel->setObjectName(QStringLiteral("cpuLabel"));
    lineChartView = new UsageChartView(this);
}

void DeviceInfoView::requestSummary() {
    to_.factsQueue.async([&device = to_.device, mainQueue = to_.mainQueue, self = QPointer(this)]() mutable {
        mainQueue->async([self = std::move(self), summary = device.getSPHardwareInfo()] {
            if (self) self->infoTextView->setSummary(summary);
        });
    });
}

void DeviceInfoView::runWave() {
    to_.sampler.startCollectInfo();
    to_.sampler.setCpuUsagePercentage([self = QPointer(this)](float usage) {
        if (self) self->tick(usage);
    });
}

void DeviceInfoView::tick(float usage) {
    usage_ = usage;
    updateDiskData();
    updateMemoryData();
    runWave(usage);
    if (seen_) refresh();
}

void DeviceInfoView::runWave(float usage) {
    wave_.add(usage);
    wave_.advance();
}

void DeviceInfoView::updateDiskData() {
    const auto value = [this](const char* key) { return util::textOf(to_.device.getDiskInfo().find(key)); };
    disk_ = {.used = value(kDiskUsedSize), .free = value(kDiskFreeSize), .total = value(kDiskTotleSize)};
}

void DeviceInfoView::updateMemoryData() {
    const auto value = [this](const char* key) { return util::textOf(to_.device.getMemoryInfo().find(key)); };
    memory_ = {.used = value(kMemoryUsedSize), .free = value(kMemoryFreeSize), .total = value(kMemoryTotleSize)};
}

std::string DeviceInfoView::centerText(const Filling& filling) {
    return fmt::format("{}GB \n共{}GB", shown(filling.used), shown(filling.total));
}

void DeviceInfoView::updateDataWithUsed(const Filling& filling, UsageRingView& view) {
    view.setCenterText(QString::fromStdString(centerText(filling)));
    view.setParts(integerPart(filling.used), integerPart(filling.free));
}

QString DeviceInfoView::description() const {
    const auto& samples = wave_.cpuPercentageDataSources();
    const auto first = samples.begin() + static_cast<std::ptrdiff_t>(CpuWave::kLeadingZeros);
    const auto [least, most] = std::minmax_element(first, samples.end());
    return QString::fromStdString(
        fmt::format("当前 {:.0f} %，最近 {} 秒最低 {:.0f} %，最高 {:.0f} %", *usage_, samples.end() - first, *least, *most));
}

void DeviceInfoView::refresh() {
    if (!usage_) return;
    updateDataWithUsed(disk_, *diskView);
    updateDataWithUsed(memory_, *memoryView);
    cpuLabel->setWholeText(QString::fromStdString(fmt::format("cpu占用：{:.0f} %", *usage_)));
    lineChartView->setDescription(description());
    lineChartView->setData(wave_);
}

void DeviceInfoView::showEvent(QShowEvent* event) {
    PageView::showEvent(event);
    seen_ = true;
    refresh();
}

// Also when the window becomes an icon.
void DeviceInfoView::hideEvent(QHideEvent* event) {
    PageView::hideEvent(event);
    seen_ = false;
}

QRect DeviceInfoView::cpuCard() const {
    const QRect column = C::contentColumn(size());
    const Growth more(height());
    return {column.left(), kRingTop + kRingHeight + more.rings + kGap, column.width(), kCpuHeight + more.line};
}

void DeviceInfoView::resizeEvent(QResizeEvent*) {
    const QRect column = C::contentColumn(size());
    computerView->setGeometry({column.topLeft() + QPoint(0, kTop), kPicture});
    const int textLeft = column.left() + kPicture.width() + kPictureGap - HardwareSummaryView::padding;
    infoTextView->setGeometry(textLeft, kTop, column.right() + 1 - textLeft, kRingTop - kTop - kGap / 2);

    const int ringHeight = kRingHeight + Growth(height()).rings;
    const int ringWidth = (column.width() - kGap) / 2;
    diskView->setGeometry(column.left(), kRingTop, ringWidth, ringHeight);
    memoryView->setGeometry(column.right() + 1 - ringWidth, kRingTop, ringWidth, ringHeight);

    const QRect card = cpuCard();
    cpuLabel->setGeometry(card.left() + kPadding, card.top() + kLabelTop, card.width() - 2 * kPadding, kLabelHeight);
    lineChartView->setGeometry(card.left() + kPlotMargin, card.top() + kPlotTop, card.width() - 2 * kPlotMargin,
                               card.height() - kPlotTop - kPlotMargin);
}

void DeviceInfoView::paintEvent(QPaintEvent* event) {
    PageView::paintEvent(event);
    QPainter painter(this);
    ui::CardGround::paint(painter, cpuCard());
}

}  // namespace halvane::device
