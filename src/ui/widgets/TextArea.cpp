#include "ui/widgets/TextArea.h"

#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/ScrollBar.h"

#include <QContextMenuEvent>
#include <QPainter>
#include <QScrollBar>

namespace halvane::ui {

namespace {

using C = HDCLUICenter;

}  // namespace

TextArea::TextArea(const QString& name, QWidget* parent) : QPlainTextEdit(parent) {
    setAccessibleName(name);
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setTabChangesFocus(true);
    setFrameShape(QFrame::NoFrame);
    setFont(C::font(C::Type::Caption));
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    ScrollBar::applyTo(*verticalScrollBar());
    setViewportMargins(8, 8, 2, 8);
    viewport()->setAutoFillBackground(false);
}

void TextArea::paintEvent(QPaintEvent* event) {
    QPainter painter(viewport());
    painter.fillRect(viewport()->rect(), C::colorSub);
    painter.end();
    QPlainTextEdit::paintEvent(event);
}

// Its entries would stand in another language than ours; the keys work.
void TextArea::contextMenuEvent(QContextMenuEvent* event) { event->accept(); }

}  // namespace halvane::ui
