#pragma once

#include "platform/Updater.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace halvane::test {

/// Notes what it is asked, and reports what the test says.
class RecordingUpdater final : public platform::Updater {
public:
    explicit RecordingUpdater(std::vector<std::string>& events) : events_(events) {}

    void setDelegate(Delegate delegate) override { delegate_ = std::move(delegate); }
    void checkForUpdatesInBackground() override { note("update check"); }
    void checkForUpdateInformation() override { note("update information"); }
    void checkForUpdates() override { note("interactive update check"); }

    void find(const std::string& version) const { delegate_.didFindValidUpdate(version); }
    void findNothing() const { delegate_.didNotFindUpdate(); }
    [[nodiscard]] bool hasDelegate() const { return delegate_.didFindValidUpdate && delegate_.didNotFindUpdate; }

    std::function<std::string()> situation;  ///< noted with each question; may be empty

private:
    void note(const std::string& question) { events_.push_back(situation ? question + situation() : question); }

    std::vector<std::string>& events_;
    Delegate delegate_;
};

}  // namespace halvane::test
