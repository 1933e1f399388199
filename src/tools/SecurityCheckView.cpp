#include "tools/SecurityCheckView.h"

#include "ui/widgets/BorderedButton.h"
#include "ui/widgets/CardGround.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/FilledButton.h"
#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/ImageView.h"
#include "util/StyledText.h"

#include <QPainter>

namespace halvane::tools {

namespace {

using C = ui::HDCLUICenter;

constexpr int kTitleTop = 40;
constexpr int kTitleHeight = 36;
constexpr int kRowTop = 108;
constexpr int kRowHeight = 104;
constexpr int kRowStep = 120;
constexpr int kPadding = 24;
constexpr int kIcon = 56;
constexpr int kTextGap = 20;
constexpr int kTextTop = 26;
constexpr int kTextHeight = 26;
constexpr int kState = 24;
constexpr QSize kButton(88, C::heightControl);
constexpr int kFixTop = 484;
constexpr QSize kFix(200, 48);

}  // namespace

SecurityCheckView::SecurityCheckView() : PageView(QStringLiteral("安全"), Ground::White) {
    setObjectName(QStringLiteral("securityCheckView"));
    setUpUI();
    updateTitle();
}

void SecurityCheckView::setUpUI() {
    titleLabel = new ui::ElidedLabel(QString(), C::font(C::Type::Heading, QFont::Bold), C::colorText1, this);
    titleLabel->setObjectName(QStringLiteral("titleLabel"));
    rows_ = {makeRow("softState", "safe_soft", "安全软件检测", "检测电脑是否按要求安装360天擎", &SecurityCheckView::softStateAction),
             makeRow("netState", "safe_net", "域控安全检测", "检测电脑是否加入域环境", &SecurityCheckView::netStateAction),
             makeRow("persionState", "safe_persion", "个人身份验证", "检测登陆账户是否与电脑解锁账户一致",
                     &SecurityCheckView::persionStateAction)};
    fixBtn = new ui::FilledButton(QStringLiteral("待修复"), this, C::Type::Title);
    fixBtn->setObjectName(QStringLiteral("fixBtn"));
    QObject::connect(fixBtn, &QPushButton::clicked, this, &SecurityCheckView::fixAction);
}

SecurityCheckView::Row SecurityCheckView::makeRow(const char* name, const char* iconName, const char* title, const char* subTitle,
                                                  void (SecurityCheckView::*action)()) {
    Row row{.icon = new ui::ImageView(QLatin1String(iconName), this),
            .title = creatFuncTitle(QString::fromUtf8(title)),
            .subTitle = creatFuncSubTitle(QString::fromUtf8(subTitle)),
            .state = new ui::ImageView(QStringLiteral("error"), this),
            .button = new ui::BorderedButton(QStringLiteral("修复"), ui::BorderedButton::Look::Orange, this, C::Type::Title)};
    row.title->setObjectName(QLatin1String(name) + QStringLiteral("Title"));
    row.subTitle->setObjectName(QLatin1String(name) + QStringLiteral("SubTitle"));
    row.state->setObjectName(QLatin1String(name) + QStringLiteral("Image"));
    row.button->setObjectName(QLatin1String(name) + QStringLiteral("Btn"));
    row.state->setToolTip(QStringLiteral("不符合要求"));
    row.state->setAccessibleName(QStringLiteral("%1：%2").arg(row.title->text(), row.state->toolTip()));
    row.button->setAccessibleName(QStringLiteral("%1：%2").arg(row.button->text(), row.title->text()));
    row.button->setAccessibleDescription(row.state->toolTip());
    QObject::connect(row.button, &QPushButton::clicked, this, action);
    return row;
}

ui::ElidedLabel* SecurityCheckView::creatFuncTitle(const QString& text) {
    return new ui::ElidedLabel(text, C::font(C::Type::RowTitle, QFont::Bold), C::colorText1, this);
}

ui::ElidedLabel* SecurityCheckView::creatFuncSubTitle(const QString& text) {
    return new ui::ElidedLabel(text, C::font(C::Type::Body), C::colorText2, this);
}

void SecurityCheckView::updateTitle() {
    const std::string count = fixCount();
    util::StyledText text{.text = "您的电脑有" + count + "项不符合公司要求，请立即修复", .runs = {}};
    text.styleFirst(count, {.fontName = {}, .fontSize = {}, .lineSpacing = {}, .color = C::colorThemeOrange.name().toStdString()});
    titleLabel->setStyledText(text);
}

QRect SecurityCheckView::rowRect(std::size_t index) const {
    const QRect column = C::contentColumn(size());
    return {column.left(), kRowTop + static_cast<int>(index) * kRowStep, column.width(), kRowHeight};
}

void SecurityCheckView::resizeEvent(QResizeEvent*) {
    const QRect column = C::contentColumn(size());
    titleLabel->setGeometry(column.left(), kTitleTop, column.width(), kTitleHeight);
    for (std::size_t index = 0; index < rows_.size(); ++index) {
        const QRect area = rowRect(index);
        const Row& row = rows_[index];
        row.icon->setGeometry(area.left() + kPadding, area.top() + (kRowHeight - kIcon) / 2, kIcon, kIcon);
        const int buttonLeft = area.right() + 1 - kPadding - kButton.width();
        row.button->setVisibleGeometry({{buttonLeft, area.top() + (kRowHeight - kButton.height()) / 2}, kButton});
        const int stateLeft = buttonLeft - 20 - kState;
        row.state->setGeometry(stateLeft, area.top() + (kRowHeight - kState) / 2, kState, kState);
        const int textLeft = area.left() + kPadding + kIcon + kTextGap;
        row.title->setGeometry(textLeft, area.top() + kTextTop, stateLeft - 12 - textLeft, kTextHeight);
        row.subTitle->setGeometry(textLeft, area.top() + kTextTop + kTextHeight, stateLeft - 12 - textLeft, kTextHeight);
    }
    fixBtn->setVisibleGeometry({{column.right() + 1 - kFix.width(), kFixTop}, kFix});
}

void SecurityCheckView::paintEvent(QPaintEvent* event) {
    PageView::paintEvent(event);
    QPainter painter(this);
    for (std::size_t index = 0; index < rows_.size(); ++index) ui::CardGround::paint(painter, rowRect(index));
}

}  // namespace halvane::tools
