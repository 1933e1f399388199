#include "ui/widgets/IconTextField.h"

#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/NamedImage.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QPainter>
#include <memory>

namespace halvane::ui {

namespace {

constexpr int kImage = 20;
constexpr int kImageLeft = 14;
constexpr int kTextLeft = 44;
constexpr int kTextRight = 14;
constexpr int kOwnMargin = 2;  // that a line edit keeps left and right of its text

}  // namespace

IconTextField::IconTextField(const QString& imageName, QWidget* parent) : QLineEdit(parent), imageName_(imageName) {
    setFont(HDCLUICenter::font(HDCLUICenter::Type::Body));
    setFrame(false);
    setTextMargins(kTextLeft - kOwnMargin, 0, kTextRight - kOwnMargin, 0);
    // The ground with its round border is painted here, beneath the text.
    QPalette colors = palette();
    colors.setColor(QPalette::Base, Qt::transparent);
    setPalette(colors);
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
    // Qt's own titles follow the desktop's language, and its translations are seldom installed.
    static constexpr struct {
        const char* action;
        const char16_t* title;
    } kTitles[] = {{"edit-undo", u"撤销"},  {"edit-redo", u"重做"},   {"edit-cut", u"剪切"},  {"edit-copy", u"拷贝"},
                   {"edit-paste", u"粘贴"}, {"edit-delete", u"删除"}, {"select-all", u"全选"}};
    QMenu* menu = createStandardContextMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (QAction* action : menu->actions()) {
        for (const auto& [name, title] : kTitles) {
            if (action->objectName() != QLatin1String(name)) continue;
            const QString keys = action->text().section(u'\t', 1);  // "Copy\tCtrl+C"
            action->setText(QString::fromUtf16(title) + (keys.isEmpty() ? QString() : u'\t' + keys));
        }
    }
    menu->popup(event->globalPos());
}

}  // namespace halvane::ui
