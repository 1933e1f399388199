#pragma once

#include "platform/DesktopNotifications.h"

#include <string>
#include <vector>

namespace halvane::test {

/// A desktop that keeps what it was given to show.
class RecordingNotifications final : public platform::DesktopNotifications {
public:
    void show(const Notice& notice) override { notices.push_back(notice); }

    /// The summaries, and from now on none.
    std::vector<std::string> takeSummaries() {
        std::vector<std::string> summaries;
        for (const auto& notice : notices) summaries.push_back(notice.summary);
        notices.clear();
        return summaries;
    }

    std::vector<Notice> notices;
};

}  // namespace halvane::test
