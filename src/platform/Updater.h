#pragma once

#include <functional>
#include <string>

namespace halvane::platform {

/// The update mechanism of the process. Main thread; nothing blocks.
class Updater {
public:
    /// Who is told the result of `checkForUpdateInformation`. A failed check calls neither.
    struct Delegate {
        std::function<void(const std::string& versionString)> didFindValidUpdate;
        std::function<void()> didNotFindUpdate;
    };

    virtual ~Updater() = default;
    virtual void setDelegate(Delegate delegate) = 0;
    /// Quiet: shows an offer only when an update exists.
    virtual void checkForUpdatesInBackground() = 0;
    /// Only reports to the delegate.
    virtual void checkForUpdateInformation() = 0;
    /// With windows of its own: progress, offer, or that there is nothing newer.
    virtual void checkForUpdates() = 0;
};

}  // namespace halvane::platform
