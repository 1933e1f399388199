#pragma once

#include <QLabel>

namespace halvane::ui {

/// One line of plain text. What does not fit is elided on the right, and a tool tip then shows the whole.
class ElidedLabel final : public QLabel {
public:
    using QLabel::QLabel;

    /// The whole text, which `text()` answers too. Line breaks are shown as spaces.
    void setWholeText(const QString& text);
    [[nodiscard]] QString shownText() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private:
    void updateToolTip();
};

}  // namespace halvane::ui
