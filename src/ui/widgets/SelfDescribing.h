#pragma once

#include <QAccessible>
#include <QString>

namespace halvane::ui {

/// Second base of a widget whose drawing changes all the time. Screen readers get its accessible name and, when
/// they look, the words of the moment; nobody is told of each change.
class SelfDescribing {
public:
    virtual ~SelfDescribing() = default;
    [[nodiscard]] virtual QAccessible::Role accessibleRole() const = 0;
    [[nodiscard]] virtual QString accessibleText() const = 0;
};

}  // namespace halvane::ui
