#include "ui/widgets/TextArea.h"

#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/ScrollBar.h"

#include <QContextMenuEvent>
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
    // Selected by class, so that the scroll bar keeps its own.
    setStyleSheet(QStringLiteral("QPlainTextEdit { background: %1; border: none; border-radius: %2px; padding: 8px 2px 8px 8px }")
                      .arg(C::colorSub.name())
                      .arg(C::radiusCard));
}

// Its entries would stand in another language than ours; the keys work.
void TextArea::contextMenuEvent(QContextMenuEvent* event) { event->accept(); }

}  // namespace halvane::ui
