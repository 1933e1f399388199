#include "ui/widgets/TextField.h"

#include "ui/widgets/HDCLUICenter.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>

namespace halvane::ui {

namespace {

constexpr int kTextRight = 14;
constexpr int kOwnMargin = 2;  // that a line edit keeps left and right of its text

}  // namespace

TextField::TextField(QWidget* parent, int textLeft) : QLineEdit(parent) {
    setFont(HDCLUICenter::font(HDCLUICenter::Type::Body));
    setFrame(false);
    setTextMargins(textLeft - kOwnMargin, 0, kTextRight - kOwnMargin, 0);
    // The ground with its round border is painted here, beneath the text.
    QPalette colors = palette();
    colors.setColor(QPalette::Base, Qt::transparent);
    setPalette(colors);
}

void TextField::paintEvent(QPaintEvent* event) {
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const bool focused = hasFocus();
        const qreal border = focused ? 2 : 1;
        QColor color = HDCLUICenter::colorEdge;
        if (focused) {
            color = HDCLUICenter::colorInk;
        } else if (!isEnabled()) {
            color = HDCLUICenter::colorLine;
        } else if (underMouse()) {
            color = HDCLUICenter::colorText2;
        }
        painter.setPen(QPen(color, border));
        painter.setBrush(isEnabled() ? HDCLUICenter::colorCard : HDCLUICenter::colorDisabledGround);
        const qreal half = border / 2;
        painter.drawRoundedRect(QRectF(rect()).adjusted(half, half, -half, -half), HDCLUICenter::radiusControl - half,
                                HDCLUICenter::radiusControl - half);
        paintBesideText(painter);
    }
    QLineEdit::paintEvent(event);
}

void TextField::keyPressEvent(QKeyEvent* event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && event->isAutoRepeat()) return;
    QLineEdit::keyPressEvent(event);
}

void TextField::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    update();
}

void TextField::enterEvent(QEnterEvent* event) {
    QLineEdit::enterEvent(event);
    update();
}

void TextField::leaveEvent(QEvent* event) {
    QLineEdit::leaveEvent(event);
    update();
}

void TextField::contextMenuEvent(QContextMenuEvent* event) {
    // Qt's own menu speaks English wherever its translations are not installed, which is nearly everywhere.
    const bool readable = echoMode() == QLineEdit::Normal;
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [this, menu](const QString& title, QKeySequence::StandardKey key, bool enabled, auto slot) {
        QAction* action = menu->addAction(title, this, slot);
        action->setShortcut(key);
        action->setEnabled(enabled);
    };
    add(QStringLiteral("撤销"), QKeySequence::Undo, isUndoAvailable(), &QLineEdit::undo);
    add(QStringLiteral("重做"), QKeySequence::Redo, isRedoAvailable(), &QLineEdit::redo);
    menu->addSeparator();
    add(QStringLiteral("剪切"), QKeySequence::Cut, hasSelectedText() && readable, &QLineEdit::cut);
    add(QStringLiteral("拷贝"), QKeySequence::Copy, hasSelectedText() && readable, &QLineEdit::copy);
    add(QStringLiteral("粘贴"), QKeySequence::Paste, !QGuiApplication::clipboard()->text().isEmpty(), &QLineEdit::paste);
    menu->addSeparator();
    add(QStringLiteral("全选"), QKeySequence::SelectAll, !text().isEmpty(), &QLineEdit::selectAll);
    menu->popup(event->globalPos());
}

}  // namespace halvane::ui
