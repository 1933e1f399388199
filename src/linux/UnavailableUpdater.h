#pragma once

#include "platform/Updater.h"
#include "util/Log.h"

namespace halvane::linux {

/// The updater of a program that was built without an update feed: says so in the log once, finds
/// nothing, fails no louder than a check that could not be made. Main thread; `log` outlives it.
class UnavailableUpdater final : public platform::Updater {
public:
    explicit UnavailableUpdater(util::Log& log) : log_(log) {}

    void setDelegate(Delegate /*delegate*/) override {}
    void checkForUpdatesInBackground() override { sayOnce(); }
    void checkForUpdateInformation() override { sayOnce(); }
    void checkForUpdates() override { sayOnce(); }

private:
    void sayOnce() {
        if (said_) return;
        said_ = true;
        log_.write("updates: no update feed is configured, nothing is checked");
    }

    util::Log& log_;
    bool said_ = false;
};

}  // namespace halvane::linux
