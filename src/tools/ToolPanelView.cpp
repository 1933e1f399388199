#include "tools/ToolPanelView.h"

#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/ToolButton.h"

#include <QKeyEvent>

namespace halvane::tools {

namespace {

using C = ui::HDCLUICenter;

constexpr int kBackLeft = 24;
constexpr int kRight = 28;
constexpr int kToolHeight = 36;
constexpr int kTitleMargin = 160;  // room for the buttons at both ends

}  // namespace

ToolPanelView::ToolPanelView(const QString& name, QWidget* parent)
    : PageView(name, Ground::White, parent),
      backBtn(new ui::ToolButton(QStringLiteral("ui_back"), QStringLiteral("返回"), ui::ToolButton::Shows::ImageAndTitle, this)) {
    backBtn->setObjectName(QStringLiteral("backBtn"));
    QObject::connect(backBtn, &QPushButton::clicked, this, &ToolPanelView::backAction);
}

void ToolPanelView::backAction() {
    if (const auto back = backBlock) back();
}

ui::ElidedLabel* ToolPanelView::addBarTitle(const QString& title) {
    barTitle_ = new ui::ElidedLabel(title, C::font(C::Type::Title, QFont::Bold), C::colorText1, this);
    barTitle_->setObjectName(QStringLiteral("titleLabel"));
    barTitle_->setAlignment(Qt::AlignCenter);
    return barTitle_;
}

ui::ToolButton* ToolPanelView::addBarButton(const QString& imageName, const QString& title) {
    barButton_ = new ui::ToolButton(imageName, title, ui::ToolButton::Shows::ImageAndTitle, this);
    return barButton_;
}

void ToolPanelView::resizeEvent(QResizeEvent*) {
    constexpr int margin = C::ringMargin;
    constexpr int top = (barHeight - kToolHeight) / 2 - margin;
    const auto sizeOf = [](const ui::ToolButton& button) { return button.sizeHint().boundedTo({kTitleMargin - kRight, barHeight}); };
    backBtn->setGeometry({{kBackLeft - margin, top}, sizeOf(*backBtn)});
    if (barButton_) {
        const QSize size = sizeOf(*barButton_);
        barButton_->setGeometry({{width() - kRight + margin - size.width(), top}, size});
    }
    if (barTitle_) barTitle_->setGeometry(kTitleMargin, 0, width() - 2 * kTitleMargin, barHeight);
    place();
}

void ToolPanelView::takeKeyboard(Qt::FocusReason reason) { backBtn->setFocus(reason); }

void ToolPanelView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) return backAction();
    PageView::keyPressEvent(event);
}

}  // namespace halvane::tools
