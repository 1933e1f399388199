#pragma once

#include "util/StyledText.h"

#include <QLabel>

namespace halvane::device {

/// What the computer is, in a few lines that can be selected and copied. Main thread.
class HardwareSummaryView final : public QLabel {
public:
    explicit HardwareSummaryView(QWidget* parent);

    /// Points count as pixels; a font whose name ends in "-Bold" is ours in bold.
    void setSummary(const util::StyledText& summary);
};

}  // namespace halvane::device
