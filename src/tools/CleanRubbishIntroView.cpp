#include "tools/CleanRubbishIntroView.h"

#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/FilledButton.h"
#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/ImageView.h"

namespace halvane::tools {

namespace {

using C = ui::HDCLUICenter;

constexpr int kTop = 32;  // the column stands in the middle between here and the lower edge
constexpr QSize kPicture(320, 220);
constexpr int kTitleGap = 28;
constexpr int kTitleHeight = 36;
constexpr int kSubTitleGap = 4;
constexpr int kSubTitleHeight = 22;
constexpr int kButtonGap = 28;
constexpr QSize kButton(240, 48);
constexpr int kHeight = kPicture.height() + kTitleGap + kTitleHeight + kSubTitleGap + kSubTitleHeight + kButtonGap + kButton.height();

}  // namespace

CleanRubbishIntroView::CleanRubbishIntroView(QWidget* parent)
    : ToolPanelView(QStringLiteral("垃圾清理"), parent),
      imageView(new ui::ImageView(QStringLiteral("cleanpage"), this)),
      titleLabel(new ui::ElidedLabel(QStringLiteral("垃圾清理"), C::font(C::Type::Heading, QFont::Bold), C::colorText1, this)),
      subTitleLabel(new ui::ElidedLabel(QStringLiteral("清理系统空间，让电脑更顺畅"), C::font(C::Type::Body), C::colorText2, this)),
      scanBtn(new ui::FilledButton(QStringLiteral("开始扫描"), this, C::Type::RowTitle)) {
    setObjectName(QStringLiteral("cleanIntroView"));
    imageView->setObjectName(QStringLiteral("imageView"));
    titleLabel->setObjectName(QStringLiteral("titleLabel"));
    subTitleLabel->setObjectName(QStringLiteral("subTitleLabel"));
    scanBtn->setObjectName(QStringLiteral("scanBtn"));
    titleLabel->setAlignment(Qt::AlignCenter);
    subTitleLabel->setAlignment(Qt::AlignCenter);
    QObject::connect(scanBtn, &QPushButton::clicked, this, [this] {
        if (const auto scan = scanBlock) scan();
    });
}

void CleanRubbishIntroView::place() {
    const QRect column = C::contentColumn(size());
    const int centre = column.center().x() + 1;
    int y = kTop + (height() - kTop - kHeight) / 2;
    imageView->setGeometry({{centre - kPicture.width() / 2, y}, kPicture});
    y += kPicture.height() + kTitleGap;
    titleLabel->setGeometry(column.left(), y, column.width(), kTitleHeight);
    y += kTitleHeight + kSubTitleGap;
    subTitleLabel->setGeometry(column.left(), y, column.width(), kSubTitleHeight);
    y += kSubTitleHeight + kButtonGap;
    scanBtn->setVisibleGeometry({{centre - kButton.width() / 2, y}, kButton});
}

}  // namespace halvane::tools
