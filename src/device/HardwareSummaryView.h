#pragma once

#include "ui/widgets/FocusRing.h"
#include "util/StyledText.h"

#include <QLabel>

namespace halvane::device {

/// What the computer is, in a few lines that can be selected and copied, by pointer and by keyboard. Main thread.
class HardwareSummaryView final : public QLabel {
public:
    static constexpr int padding = 10;  ///< left and right of the text, for the ring of the keyboard focus

    explicit HardwareSummaryView(QWidget* parent);

    /// Points count as pixels; a font whose name ends in "-Bold" is ours in bold.
    void setSummary(const util::StyledText& summary);

protected:
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    ui::FocusRing ring_;
};

}  // namespace halvane::device
