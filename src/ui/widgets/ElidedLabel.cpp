#include "ui/widgets/ElidedLabel.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace halvane::ui {

void ElidedLabel::setWholeText(const QString& text) {
    setTextFormat(Qt::PlainText);
    setText(text);
    updateToolTip();
}

QString ElidedLabel::shownText() const { return fontMetrics().elidedText(text().simplified(), Qt::ElideRight, contentsRect().width()); }

void ElidedLabel::updateToolTip() { setToolTip(shownText() == text() ? QString() : text()); }

void ElidedLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.drawText(contentsRect(), static_cast<int>(alignment()) | Qt::TextSingleLine, shownText());
}

void ElidedLabel::resizeEvent(QResizeEvent* event) {
    QLabel::resizeEvent(event);
    updateToolTip();
}

bool ElidedLabel::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip || toolTip().isEmpty()) return QLabel::event(event);
    // As rich text, because only that is wrapped; escaped, because others write the text.
    const auto* help = static_cast<QHelpEvent*>(event);
    QToolTip::showText(help->globalPos(), QStringLiteral("<p>%1</p>").arg(toolTip().toHtmlEscaped()), this);
    return true;
}

}  // namespace halvane::ui
