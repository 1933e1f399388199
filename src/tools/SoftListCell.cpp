#include "tools/SoftListCell.h"

#include "ui/widgets/BorderedButton.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/NamedImage.h"

#include <QPainter>

namespace halvane::tools {

namespace {

using C = ui::HDCLUICenter;

constexpr int kScrollBar = 14;  // beside the rows, inside the table
constexpr int kIcon = 40;
constexpr int kIconLeft = 12;
constexpr int kTextLeft = 72;
constexpr int kNameTop = 16;
constexpr int kNameHeight = 26;
constexpr int kSizeHeight = 20;
constexpr QSize kButton(76, 36);
constexpr int kButtonRight = 12;

}  // namespace

SoftListCell::SoftListCell()
    : RowView({.inset = {0, 0, kScrollBar, 0},
               .radius = 0,
               .selected = C::colorSub,
               .selectedHover = {},
               .hover = C::colorSub,
               .pressed = C::colorHover,
               .line = true}),
      nameLabel(new ui::ElidedLabel(QString(), C::font(C::Type::RowTitle), C::colorText1, this)),
      sizeLabel(new ui::ElidedLabel(QString(), C::font(C::Type::Caption), C::colorText2, this)),
      uninstallBtn(new ui::BorderedButton(QStringLiteral("卸载"), ui::BorderedButton::Look::Plain, this)) {
    nameLabel->setObjectName(QStringLiteral("nameLabel"));
    sizeLabel->setObjectName(QStringLiteral("sizeLabel"));
    uninstallBtn->setObjectName(QStringLiteral("uninstallBtn"));
    QObject::connect(uninstallBtn, &QPushButton::clicked, this, &SoftListCell::uninstallAction);
}

void SoftListCell::setModel(const SoftListModel& model) {
    model_ = model;
    const auto name = QString::fromStdString(model.softName);
    const auto size = QString::fromStdString(model.softSize);
    nameLabel->setWholeText(name);
    sizeLabel->setWholeText(size);
    setAccessibleName(QStringLiteral("%1，%2").arg(name, size));
    uninstallBtn->setAccessibleName(QStringLiteral("卸载：%1").arg(name));
    update();
}

void SoftListCell::uninstallAction() {
    if (const auto uninstall = uninstallBlock) uninstall(model_);
}

void SoftListCell::paintEvent(QPaintEvent* event) {
    RowView::paintEvent(event);
    QPainter painter(this);
    ui::NamedImage::paint(painter, QString::fromStdString(model_.softIcon), {kIconLeft, (height() - kIcon) / 2, kIcon, kIcon});
}

void SoftListCell::resizeEvent(QResizeEvent*) {
    const QRect visible = visibleRect();
    const int buttonLeft = visible.right() + 1 - kButtonRight - kButton.width();
    const int textWidth = buttonLeft - kTextLeft - kButtonRight;
    nameLabel->setGeometry(kTextLeft, kNameTop, textWidth, kNameHeight);
    sizeLabel->setGeometry(kTextLeft, kNameTop + kNameHeight, textWidth, kSizeHeight);
    uninstallBtn->setVisibleGeometry({{buttonLeft, (height() - kButton.height()) / 2}, kButton});
}

}  // namespace halvane::tools
