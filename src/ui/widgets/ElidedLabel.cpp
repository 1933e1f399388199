#include "ui/widgets/ElidedLabel.h"

#include "ui/widgets/WholeTextTip.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <algorithm>
#include <cmath>

namespace halvane::ui {

namespace {

/// Every line break and tab as one space, so that places in the text stay what they are.
QString singleLine(QString text) {
    std::replace_if(
        text.begin(), text.end(), [](QChar c) { return c.isSpace(); }, u' ');
    return text;
}

QTextCharFormat formatOf(const util::StyledText::Style& style, const QFont& base) {
    QFont font = base;
    if (style.fontSize) font.setPixelSize(static_cast<int>(std::lround(*style.fontSize)));
    QTextCharFormat format;
    format.setFont(font);
    if (style.color) format.setForeground(QColor(QString::fromStdString(*style.color)));
    return format;
}

}  // namespace

ElidedLabel::ElidedLabel(const QString& text, const QFont& font, const QColor& color, QWidget* parent) : QLabel(parent) {
    setFont(font);
    setColor(color);
    setWholeText(text);
}

void ElidedLabel::setWholeText(const QString& text) {
    formats_.clear();
    setTextFormat(Qt::PlainText);
    setText(text);
    updateToolTip();
}

void ElidedLabel::setStyledText(const util::StyledText& text) {
    setWholeText(QString::fromStdString(text.text));
    const auto placeOf = [&text](std::size_t bytes) {
        return static_cast<int>(QString::fromUtf8(text.text.data(), static_cast<qsizetype>(bytes)).size());
    };
    for (const auto& run : text.runs) {
        const int start = placeOf(run.offset);
        formats_.push_back({start, placeOf(run.offset + run.length) - start, formatOf(run.style, font())});
    }
    updateToolTip();
    update();
}

void ElidedLabel::setColor(const QColor& color) {
    QPalette colors = palette();
    colors.setColor(QPalette::WindowText, color);
    setPalette(colors);
}

void ElidedLabel::layOut(QTextLayout& layout, const QString& line) const {
    layout.setFont(font());
    layout.setText(line);
    layout.setFormats(formats_);
    layout.setCacheEnabled(true);
    layout.beginLayout();
    layout.createLine().setNumColumns(static_cast<int>(line.size()));
    layout.endLayout();
}

qreal ElidedLabel::wholeWidth() const {
    if (text().isEmpty()) return 0;
    QTextLayout layout;
    layOut(layout, singleLine(text()));
    return layout.lineAt(0).naturalTextWidth();
}

QString ElidedLabel::shownText() const {
    const QString whole = formats_.isEmpty() ? text().simplified() : singleLine(text());
    const int width = contentsRect().width();
    if (formats_.isEmpty()) return fontMetrics().elidedText(whole, Qt::ElideRight, width);
    QTextLayout layout;
    layOut(layout, whole);
    const QTextLine line = layout.lineAt(0);
    if (line.naturalTextWidth() <= width) return whole;
    const QChar ellipsis(u'…');
    const qreal room = width - fontMetrics().horizontalAdvance(ellipsis);
    return whole.left(std::max(0, line.xToCursor(room, QTextLine::CursorOnCharacter))) + ellipsis;
}

QSize ElidedLabel::sizeHint() const { return {static_cast<int>(std::ceil(wholeWidth())), QLabel::sizeHint().height()}; }

void ElidedLabel::updateToolTip() { setToolTip(shownText() == text() ? QString() : text()); }

void ElidedLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRect area = contentsRect();
    if (formats_.isEmpty()) {
        painter.drawText(area, static_cast<int>(alignment()) | Qt::TextSingleLine, shownText());
        return;
    }
    QTextLayout layout;
    layOut(layout, shownText());
    const QTextLine line = layout.lineAt(0);
    const QSize size(static_cast<int>(std::ceil(line.naturalTextWidth())), static_cast<int>(std::ceil(line.height())));
    painter.setPen(palette().color(QPalette::WindowText));
    layout.draw(&painter, QStyle::alignedRect(layoutDirection(), alignment(), size, area).topLeft());
}

void ElidedLabel::resizeEvent(QResizeEvent* event) {
    QLabel::resizeEvent(event);
    updateToolTip();
}

bool ElidedLabel::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip || toolTip().isEmpty()) return QLabel::event(event);
    WholeTextTip::show(*static_cast<QHelpEvent*>(event), *this, toolTip());
    return true;
}

}  // namespace halvane::ui
