#include "tools/RemoteAssistanceView.h"

#include "ui/widgets/CardGround.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/FilledButton.h"
#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/TextField.h"

#include <QPainter>

namespace halvane::tools {

namespace {

using C = ui::HDCLUICenter;

constexpr int kHalfTop = 88;
constexpr int kHalfHeight = 340;
constexpr int kGap = 20;
constexpr int kPadding = 28;
// From the top of a half; both halves share these lines.
constexpr int kSection = 24;
constexpr int kSectionHeight = 26;
constexpr int kFirstCaption = 68;
constexpr int kFirstLine = 96;
constexpr int kSecondCaption = 160;
constexpr int kSecondLine = 188;
constexpr int kCaptionHeight = 20;
constexpr int kButton = 260;
constexpr int kButtonHeight = 48;

}  // namespace

RemoteAssistanceView::RemoteAssistanceView(QWidget* parent) : ToolPanelView(QStringLiteral("远程协助"), parent) {
    setUpUI();
    QObject::connect(remoteBtn, &QPushButton::clicked, this, &RemoteAssistanceView::remoteAction);
}

void RemoteAssistanceView::setUpUI() {
    const auto section = [this](const char* text) {
        return new ui::ElidedLabel(QString::fromUtf8(text), C::font(C::Type::RowTitle, QFont::Bold), C::colorText1, this);
    };
    const auto caption = [this](const char* text) {
        return new ui::ElidedLabel(QString::fromUtf8(text), C::font(C::Type::Caption), C::colorText2, this);
    };
    const auto code = [this](const char* name, const char* text, const ui::ElidedLabel* called) {
        auto* label = new ui::ElidedLabel(QString::fromUtf8(text), C::font(C::Type::Heading, QFont::Bold), C::colorText1, this);
        label->setObjectName(QLatin1String(name));
        label->setTextInteractionFlags(Qt::NoTextInteraction);
        label->setAccessibleDescription(called->text());
        return label;
    };
    const auto field = [this](const char* name, const char* placeholder, const ui::ElidedLabel* called) {
        auto* input = new ui::TextField(this);
        input->setObjectName(QLatin1String(name));
        input->setPlaceholderText(QString::fromUtf8(placeholder));
        input->setAccessibleName(called->text());
        return input;
    };
    setObjectName(QStringLiteral("remoteView"));
    titleLabel = addBarTitle(QStringLiteral("远程协助"));
    localSection = section("允许控制本机");
    localCodeCaption = caption("本机识别码");
    localCodeLabel = code("localCodeLabel", "XXX XXX XXX", localCodeCaption);
    localPWCaption = caption("本机验证码");
    localPWLabel = code("localPWLabel", "XXXXXX", localPWCaption);
    remoteSection = section("控制远程设备");
    romateCodeCaption = caption("伙伴识别码");
    romateCodeTF = field("romateCodeTF", "输入识别码，远程伙伴", romateCodeCaption);
    remotePWCaption = caption("验证码");
    remotePWTF = field("remotePWTF", "选填", remotePWCaption);
    remoteBtn = new ui::FilledButton(QStringLiteral("远程连接"), this, C::Type::RowTitle);
    remoteBtn->setObjectName(QStringLiteral("remoteBtn"));
}

void RemoteAssistanceView::remoteAction() {
    if (const auto connect = remoteBlock) connect();
}

QRect RemoteAssistanceView::localHalf() const {
    const QRect column = C::contentColumn(size());
    return {column.left(), kHalfTop, (column.width() - kGap) / 2, kHalfHeight};
}

QRect RemoteAssistanceView::remoteHalf() const {
    const QRect local = localHalf();
    return local.translated(local.width() + kGap, 0);
}

void RemoteAssistanceView::place() {
    const auto put = [](QWidget* widget, const QRect& half, int y, int height) {
        widget->setGeometry(half.left() + kPadding, half.top() + y, half.width() - 2 * kPadding, height);
    };
    const QRect local = localHalf();
    put(localSection, local, kSection, kSectionHeight);
    put(localCodeCaption, local, kFirstCaption, kCaptionHeight);
    put(localCodeLabel, local, kFirstLine, C::heightControl);
    put(localPWCaption, local, kSecondCaption, kCaptionHeight);
    put(localPWLabel, local, kSecondLine, C::heightControl);
    const QRect remote = remoteHalf();
    put(remoteSection, remote, kSection, kSectionHeight);
    put(romateCodeCaption, remote, kFirstCaption, kCaptionHeight);
    put(romateCodeTF, remote, kFirstLine, C::heightControl);
    put(remotePWCaption, remote, kSecondCaption, kCaptionHeight);
    put(remotePWTF, remote, kSecondLine, C::heightControl);
    remoteBtn->setVisibleGeometry({remote.left() + kPadding, remote.top() + kButton, remote.width() - 2 * kPadding, kButtonHeight});
}

void RemoteAssistanceView::paintEvent(QPaintEvent* event) {
    ToolPanelView::paintEvent(event);
    QPainter painter(this);
    for (const QRect& half : {localHalf(), remoteHalf()}) ui::CardGround::paint(painter, half);
}

}  // namespace halvane::tools
