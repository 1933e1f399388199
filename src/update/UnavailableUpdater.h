#pragma once

#include "platform/Updater.h"
#include "util/Log.h"

#include <functional>
#include <utility>

namespace halvane::update {

/// The updater of a program that was built without an update feed: says so in the log once, finds
/// nothing, and tells the person who asks for a check. Main thread; `log` outlives it.
class UnavailableUpdater final : public platform::Updater {
public:
    /// `inform`: shows the person a sentence; may be empty.
    UnavailableUpdater(util::Log& log, std::function<void(const std::string&)> inform) : log_(log), inform_(std::move(inform)) {}

    void setDelegate(Delegate /*delegate*/) override {}
    void checkForUpdatesInBackground() override { sayOnce(); }
    void checkForUpdateInformation() override { sayOnce(); }
    void checkForUpdates() override {
        sayOnce();
        if (inform_) inform_("没有可用的更新服务，请联系 IT 服务台。");
    }

private:
    void sayOnce() {
        if (said_) return;
        said_ = true;
        log_.write("updates: no update feed is configured, nothing is checked");
    }

    util::Log& log_;
    std::function<void(const std::string&)> inform_;
    bool said_ = false;
};

}  // namespace halvane::update
