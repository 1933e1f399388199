#include "ui/widgets/IconTextField.h"

#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/NamedImage.h"

#include <QFocusEvent>
#include <QPainter>

namespace halvane::ui {

namespace {

constexpr int kImage = 20;
constexpr int kImageLeft = 14;
constexpr int kTextLeft = 44;

}  // namespace

IconTextField::IconTextField(const QString& imageName, QWidget* parent) : TextField(parent, kTextLeft), imageName_(imageName) {
    QObject::connect(this, &QLineEdit::textChanged, this, &IconTextField::updateFont);
    updateFont();
}

void IconTextField::updateFont() {
    // The dots of a password fill the width of a Chinese character, and would touch in the size of the rest.
    const bool dots = echoMode() == QLineEdit::Password && !text().isEmpty();
    QFont font = HDCLUICenter::font(dots ? HDCLUICenter::Type::Dots : HDCLUICenter::Type::Body);
    if (dots) font.setLetterSpacing(QFont::AbsoluteSpacing, 2);
    setFont(font);
}

void IconTextField::placeCursor() { holdsSuffixOnly() ? home(false) : end(false); }

void IconTextField::paintBesideText(QPainter& painter) {
    painter.setOpacity(isEnabled() ? 1 : HDCLUICenter::disabledOpacity);
    NamedImage::paint(painter, imageName_, QRect(kImageLeft, (height() - kImage) / 2, kImage, kImage));
}

void IconTextField::focusInEvent(QFocusEvent* event) {
    TextField::focusInEvent(event);
    const bool byKeyboard = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    if (byKeyboard && holdsSuffixOnly()) placeCursor();
}

}  // namespace halvane::ui
