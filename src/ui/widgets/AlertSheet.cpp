#include "ui/widgets/AlertSheet.h"

#include "ui/widgets/FilledButton.h"
#include "ui/widgets/HDCLBaseWindow.h"
#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/ImageView.h"

#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QWindow>
#include <algorithm>

namespace halvane::ui {

namespace {

using C = HDCLUICenter;

constexpr int kWidth = 330;
constexpr int kTextLeft = 88;
constexpr int kPadding = 24;

QLabel* addText(AlertSheet& sheet, const QString& text, const QFont& font, int top, int lineHeight) {
    auto* label = new QLabel(text, &sheet);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setFont(font);
    const int width = kWidth - kTextLeft - kPadding;
    label->setGeometry(kTextLeft, top, width, std::max(lineHeight, label->heightForWidth(width)));
    return label;
}

/// The oldest of the windows that are on the screen; of all, if none is.
QWidget* firstWindow() {
    QWidget* first = nullptr;
    for (const QWindow* window : QGuiApplication::topLevelWindows()) {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (widget->windowHandle() != window || !dynamic_cast<HDCLBaseWindow*>(widget)) continue;
            if (widget->isVisible()) return widget;
            if (!first) first = widget;
        }
    }
    return first;
}

}  // namespace

AlertSheet::AlertSheet(const QString& text, QWidget* window) : QDialog(window, Qt::Sheet) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(window->windowTitle());
    setAccessibleName(QStringLiteral("提示"));
    setAccessibleDescription(text);

    auto* image = new ImageView(QStringLiteral("icon"), this);
    image->setGeometry(kPadding, 28, 48, 48);
    const QLabel* title = addText(*this, QStringLiteral("提示"), C::font(C::Type::RowTitle, QFont::Bold), 30, 24);
    const QLabel* body = addText(*this, text, C::font(C::Type::Body), title->geometry().bottom() + 1, 22);

    auto* button = new FilledButton(QStringLiteral("确定"), this);
    button->setDefault(true);
    const int top = std::max(100, body->geometry().bottom() + 21);
    button->setVisibleGeometry({kWidth - kPadding - 96, top, 96, 40});
    QObject::connect(button, &QPushButton::clicked, this, &QDialog::accept);
    setFixedSize(kWidth, top + 40 + 20);
}

void AlertSheet::present(const QString& text) {
    if (QWidget* window = firstWindow()) (new AlertSheet(text, window))->open();
}

void AlertSheet::presentWhereThePersonIs(const QString& text) {
    QWidget* window = dynamic_cast<HDCLBaseWindow*>(QApplication::activeWindow());
    if (!window) return present(text);
    (new AlertSheet(text, window))->open();
}

void AlertSheet::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

}  // namespace halvane::ui
