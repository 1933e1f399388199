#pragma once

#include "util/StyledText.h"

#include <QLabel>
#include <QTextLayout>

namespace halvane::ui {

/// One line of text, plain or styled. What does not fit is elided on the right, and a tool tip then shows
/// the whole.
class ElidedLabel : public QLabel {
public:
    using QLabel::QLabel;
    ElidedLabel(const QString& text, const QFont& font, const QColor& color, QWidget* parent);

    /// The whole text, which `text()` answers too. Line breaks are shown as spaces.
    void setWholeText(const QString& text);
    /// Points count as pixels; spacing and font names are not looked at.
    void setStyledText(const util::StyledText& text);
    void setColor(const QColor& color);
    [[nodiscard]] QString shownText() const;
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private:
    void updateToolTip();
    /// Laid out in one line, however long it is.
    void layOut(QTextLayout& layout, const QString& line) const;
    [[nodiscard]] qreal wholeWidth() const;

    QList<QTextLayout::FormatRange> formats_;  ///< empty for plain text
};

}  // namespace halvane::ui
