#pragma once

#include "platform/StatusBar.h"

#include <functional>
#include <memory>

namespace halvane::device {

/// The client's icon in the status bar, whose menu leads to the removal of the client. Main thread.
class HVStatusBarConfig {
public:
    using UninstallMenuBlock = std::function<void()>;

    /// `statusBar` outlives it.
    explicit HVStatusBarConfig(platform::StatusBar& statusBar) : statusBar_(statusBar) {}

    /// The process-wide instance; the assembly says how it is made.
    static HVStatusBarConfig& sharedConfig();

    /// Puts the icon into the status bar, in place of an earlier one.
    void addStatusMenu();
    /// What choosing "卸载" does: the callback, if there is one.
    void uninstallMenuItemClick() const;

    void setUninstallMenuBlock(UninstallMenuBlock callback) { uninstallMenuBlock_ = std::move(callback); }
    [[nodiscard]] const UninstallMenuBlock& uninstallMenuBlock() const { return uninstallMenuBlock_; }
    void setStatusMenuItem(std::unique_ptr<platform::StatusBar::Item> item) { statusMenuItem_ = std::move(item); }
    [[nodiscard]] platform::StatusBar::Item* statusMenuItem() const { return statusMenuItem_.get(); }

private:
    platform::StatusBar& statusBar_;
    UninstallMenuBlock uninstallMenuBlock_;
    std::unique_ptr<platform::StatusBar::Item> statusMenuItem_;
};

}  // namespace halvane::device
