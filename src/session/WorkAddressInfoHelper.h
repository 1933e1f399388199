#pragma once

#include "util/Value.h"

#include <optional>

namespace halvane::platform {
class Preferences;
}

namespace halvane::session {

/// The list of workplaces that the server sent last, kept in the preferences exactly as it came. Main thread.
class WorkAddressInfoHelper {
public:
    explicit WorkAddressInfoHelper(platform::Preferences& preferences);

    /// Replaces the list, an empty one included, and writes the preferences. An absent one changes nothing.
    void saveWorkAddressInfoWithData(const std::optional<util::Value::List>& data);

    /// Absent when none was stored, or something else stands in its place.
    [[nodiscard]] std::optional<util::Value::List> getWorkAddressInfo() const;

private:
    platform::Preferences& preferences_;
};

}  // namespace halvane::session
