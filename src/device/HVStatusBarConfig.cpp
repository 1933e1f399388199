#include "device/HVStatusBarConfig.h"

#include "util/SharedInstance.h"

namespace halvane::device {

namespace {

constexpr const char* kImage = "AppIcon";
constexpr int kImageSide = 17;

}  // namespace

HVStatusBarConfig& HVStatusBarConfig::sharedConfig() { return util::SharedInstance<HVStatusBarConfig>::get(); }

void HVStatusBarConfig::addStatusMenu() {
    statusMenuItem_.reset();  // first, or two icons would stand side by side for a moment
    statusMenuItem_ = statusBar_.statusItemWithLength(platform::StatusBar::kSquareLength);
    statusMenuItem_->setImage(kImage, kImageSide, kImageSide);
    statusMenuItem_->setMenu({{.title = "卸载", .action = [this] { uninstallMenuItemClick(); }, .keyEquivalent = ""}});
}

void HVStatusBarConfig::uninstallMenuItemClick() const {
    const auto callback = uninstallMenuBlock_;  // it may register another one
    if (callback) callback();
}

}  // namespace halvane::device
