#pragma once

#include <string>

namespace halvane::platform {

/// Short messages that the desktop shows beside its windows. Main thread; nothing blocks and nothing is answered: where
/// the desktop has no place for them, nothing is shown.
class DesktopNotifications {
public:
    enum class Urgency { Normal, Critical };

    /// Plain texts in UTF-8.
    struct Notice {
        std::string subject;  ///< names what it is about; never shown
        std::string summary;
        std::string body;
        Urgency urgency = Urgency::Normal;
    };

    virtual ~DesktopNotifications() = default;
    /// Takes the place of the notice that is shown about the same subject.
    virtual void show(const Notice& notice) = 0;
};

}  // namespace halvane::platform
