#include "ui/widgets/IconTextField.h"

#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/NamedImage.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QMenu>
#include <QPainter>

namespace halvane::ui {

namespace {

constexpr int kImage = 20;
constexpr int kImageLeft = 14;
constexpr int kTextLeft = 44;
constexpr int kTextRight = 14;
constexpr int kOwnMargin = 2;  // that a line edit keeps left and right of its text

}  // namespace

IconTextField::IconTextField(const QString& imageName, QWidget* parent) : QLineEdit(parent), imageName_(imageName) {
    QObject::connect(this, &QLineEdit::textChanged, this, &IconTextField::updateFont);
    updateFont();
    setFrame(false);
    setTextMargins(kTextLeft - kOwnMargin, 0, kTextRight - kOwnMargin, 0);
    // The ground with its round border is painted here, beneath the text.
    QPalette colors = palette();
    colors.setColor(QPalette::Base, Qt::transparent);
    setPalette(colors);
}

void IconTextField::updateFont() {
    // The dots of a password fill the width of a Chinese character, and would touch in the size of the rest.
    const bool dots = echoMode() == QLineEdit::Password && !text().isEmpty();
    QFont font = HDCLUICenter::font(dots ? HDCLUICenter::Type::Dots : HDCLUICenter::Type::Body);
    if (dots) font.setLetterSpacing(QFont::AbsoluteSpacing, 2);
    setFont(font);
}

void IconTextField::placeCursor() { holdsSuffixOnly() ? home(false) : end(false); }

void IconTextField::paintEvent(QPaintEvent* event) {
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
        painter.setOpacity(isEnabled() ? 1 : HDCLUICenter::disabledOpacity);
        NamedImage::paint(painter, imageName_, QRect(kImageLeft, (height() - kImage) / 2, kImage, kImage));
    }
    QLineEdit::paintEvent(event);
}

void IconTextField::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    const bool byKeyboard = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    if (byKeyboard && holdsSuffixOnly()) placeCursor();
    update();
}

void IconTextField::enterEvent(QEnterEvent* event) {
    QLineEdit::enterEvent(event);
    update();
}

void IconTextField::leaveEvent(QEvent* event) {
    QLineEdit::leaveEvent(event);
    update();
}

void IconTextField::contextMenuEvent(QContextMenuEvent* event) {
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
