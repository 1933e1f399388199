#pragma once

#include <QString>

class QHelpEvent;
class QWidget;

namespace halvane::ui {

/// The tool tip that repeats a text of which a control shows only a part.
class WholeTextTip {
public:
    static void show(const QHelpEvent& event, QWidget& control, const QString& text);
};

}  // namespace halvane::ui
