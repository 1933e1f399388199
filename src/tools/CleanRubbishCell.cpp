#include "tools/CleanRubbishCell.h"

#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/NamedImage.h"

#include <QPainter>

namespace halvane::tools {

namespace {

using C = ui::HDCLUICenter;

constexpr int kBox = 24;
constexpr int kBoxLeft = 20;
constexpr int kIcon = 40;
constexpr int kIconLeft = 64;
constexpr int kTextLeft = 120;
constexpr int kTextRight = 20;

}  // namespace

CleanRubbishCell::CleanRubbishCell()
    : RowView({.inset = {},
               .radius = 0,
               .selected = C::colorSub,
               .selectedHover = {},
               .hover = C::colorSub,
               .pressed = C::colorHover,
               .line = true}),
      contentLabel(new ui::ElidedLabel(QString(), C::font(C::Type::Item), C::colorText1, this)) {
    contentLabel->setObjectName(QStringLiteral("contentLabel"));
}

void CleanRubbishCell::setModel(const CleanRubbishModel& model) {
    iconName_ = QString::fromStdString(model.iconName);
    isChecked_ = model.isSelect;
    if (!model.isSelect) {
        checkImageName_ = QStringLiteral("checkbox_normal");
    } else {
        checkImageName_ = model.selectEnable ? QStringLiteral("checkbox_pushed") : QStringLiteral("item_cleaned");
    }
    contentLabel->setStyledText(model.contentAttString(C::colorText1.name().toStdString(), C::colorText2.name().toStdString()));
    setAccessibleName(contentLabel->text().simplified());
    update();
}

void CleanRubbishCell::paintEvent(QPaintEvent* event) {
    RowView::paintEvent(event);
    QPainter painter(this);
    ui::NamedImage::paint(painter, checkImageName_, {kBoxLeft, (height() - kBox) / 2, kBox, kBox});
    ui::NamedImage::paint(painter, iconName_, {kIconLeft, (height() - kIcon) / 2, kIcon, kIcon});
}

void CleanRubbishCell::resizeEvent(QResizeEvent*) { contentLabel->setGeometry(kTextLeft, 0, width() - kTextLeft - kTextRight, height()); }

}  // namespace halvane::tools
