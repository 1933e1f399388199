#include "tools/NetWorkView.h"

#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/FilledButton.h"
#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/ImageView.h"

#include <QPainter>

namespace halvane::tools {

namespace {

using C = ui::HDCLUICenter;

constexpr QSize kHead(200, 96);
constexpr QSize kCentre(200, 88);
constexpr QSize kBottom(200, 96);
constexpr int kStatusGap = 32;
constexpr int kButtonGap = 16;
constexpr QSize kStatus(280, C::heightControl);
constexpr QSize kButton(280, 48);
constexpr int kHeight =
    kHead.height() + kCentre.height() + kBottom.height() + kStatusGap + kStatus.height() + kButtonGap + kButton.height();
constexpr int kDotLeft = 16;
constexpr int kDot = 9;
constexpr int kTextLeft = 38;

QRect centred(const QRect& column, int top, QSize size) { return {{column.left() + (column.width() - size.width()) / 2, top}, size}; }

}  // namespace

NetWorkView::NetWorkView() : PageView(QStringLiteral("网络"), Ground::White) { setUpUI(); }

void NetWorkView::setUpUI() {
    headerIconView = new ui::ImageView(QStringLiteral("vpn_prom_head"), this);
    centerIconView = new ui::ImageView(QStringLiteral("vpn_prom_center"), this);
    bottomIconView = new ui::ImageView(QStringLiteral("vpn_prom_bottom"), this);
    connectStateLabel = new ui::ElidedLabel(QStringLiteral("连接状态："), C::font(C::Type::Body), C::colorText1, this);
    connectBtn = new ui::FilledButton(QStringLiteral("连接VPN"), this, C::Type::Title);
    QObject::connect(connectBtn, &QPushButton::clicked, this, &NetWorkView::connectAction);
    setObjectName(QStringLiteral("netWorkView"));
    headerIconView->setObjectName(QStringLiteral("headerIconView"));
    centerIconView->setObjectName(QStringLiteral("centerIconView"));
    bottomIconView->setObjectName(QStringLiteral("bottomIconView"));
    connectStateLabel->setObjectName(QStringLiteral("connectStateLabel"));
    connectBtn->setObjectName(QStringLiteral("connectBtn"));
}

int NetWorkView::columnTop() const { return (height() - kHeight) / 2; }

QRect NetWorkView::statusField() const {
    const int top = columnTop() + kHead.height() + kCentre.height() + kBottom.height() + kStatusGap;
    return centred(C::contentColumn(size()), top, kStatus);
}

void NetWorkView::resizeEvent(QResizeEvent*) {
    const QRect column = C::contentColumn(size());
    int y = columnTop();
    headerIconView->setGeometry(centred(column, y, kHead));
    y += kHead.height();
    centerIconView->setGeometry(centred(column, y, kCentre));
    y += kCentre.height();
    bottomIconView->setGeometry(centred(column, y, kBottom));
    const QRect status = statusField();
    connectStateLabel->setGeometry(status.adjusted(kTextLeft, 0, -kDotLeft, 0));
    connectBtn->setVisibleGeometry(centred(column, status.bottom() + 1 + kButtonGap, kButton));
}

void NetWorkView::paintEvent(QPaintEvent* event) {
    PageView::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRect status = statusField();
    painter.setPen(Qt::NoPen);
    painter.setBrush(C::colorSub);
    painter.drawRoundedRect(status, C::radiusControl, C::radiusControl);
    painter.setPen(QPen(C::colorEdge, 2));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(QRectF(status.left() + kDotLeft, status.center().y() - kDot / 2.0 + 0.5, kDot, kDot));
}

}  // namespace halvane::tools
