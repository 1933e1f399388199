#include "tools/UnInstallAlertView.h"

#include "ui/widgets/BorderedButton.h"
#include "ui/widgets/FilledButton.h"
#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/TextField.h"
#include "ui/widgets/TipLabel.h"
#include "ui/widgets/ToolButton.h"

#include <utility>

namespace halvane::tools {

namespace {

using C = ui::HDCLUICenter;
using ui::BorderedButton;

constexpr int kWidth = 456;
constexpr int kPadding = 28;
constexpr int kFieldLeft = kPadding + 60;
constexpr int kFieldTop = 80;
constexpr int kRequestWidth = 128;
constexpr int kGap = 12;
constexpr int kRight = kWidth - kPadding;
constexpr int kTipHeight = 36;
constexpr int kButtonTop = kFieldTop + C::heightControl + kTipHeight + 12;
constexpr QSize kButton(104, C::heightControl);
constexpr int kMostCharacters = 6;

/// The beginning of `text`, in characters as a person counts them: none is cut in two.
QString firstCharacters(const QString& text) {
    qsizetype end = 0;
    for (int count = 0; count < kMostCharacters && end < text.size(); ++count) end += text.at(end).isHighSurrogate() ? 2 : 1;
    return text.left(end);
}

}  // namespace

UnInstallAlertView::UnInstallAlertView(std::unique_ptr<UninstallAuthorisation> authorisation)
    : OverlayView(QStringLiteral("卸载提醒"), Ground::Scrim), authorisation_(std::move(authorisation)) {
    setObjectName(QStringLiteral("uninstallAlertView"));
    setUpUI();
    connectControls();
}

void UnInstallAlertView::setUpUI() {
    QWidget* box = &panel();
    titleLabel = new ui::ElidedLabel(QStringLiteral("卸载提醒"), C::font(C::Type::Title, QFont::Bold), C::colorText1, box);
    titleLabel->setGeometry(kPadding, 24, kWidth - 2 * kPadding - 44, 32);
    auto* caption = new ui::ElidedLabel(QStringLiteral("安全码"), C::font(C::Type::Body), C::colorText1, box);
    caption->setGeometry(kPadding, kFieldTop, kFieldLeft - kPadding - 4, C::heightControl);

    // In the order of Tab.
    vertifyTF = new ui::TextField(box);
    vertifyTF->setPlaceholderText(QStringLiteral("请输入6位安全码"));
    vertifyTF->setAccessibleName(caption->text());
    vertifyTF->setGeometry(kFieldLeft, kFieldTop, kRight - kRequestWidth - kGap - kFieldLeft, C::heightControl);
    applyVertifyCodeBtn = new BorderedButton(QStringLiteral("申请安全码"), BorderedButton::Look::Orange, box);
    applyVertifyCodeBtn->setVisibleGeometry({kRight - kRequestWidth, kFieldTop, kRequestWidth, C::heightControl});
    cancelBtn = new BorderedButton(QStringLiteral("取消"), BorderedButton::Look::Plain, box);
    cancelBtn->setVisibleGeometry({{kRight - 2 * kButton.width() - kGap, kButtonTop}, kButton});
    uninstallBtn = new ui::FilledButton(QStringLiteral("卸载"), box);
    uninstallBtn->setVisibleGeometry({{kRight - kButton.width(), kButtonTop}, kButton});
    closeBtn = new ui::ToolButton(QStringLiteral("ui_close"), QStringLiteral("✕"), ui::ToolButton::Shows::ImageOnly, box);
    closeBtn->setAccessibleName(QStringLiteral("关闭"));
    closeBtn->setToolTip(closeBtn->accessibleName());
    closeBtn->setVisibleGeometry({kRight - 36 + 10, 22, 36, 36});

    tipLabel = new ui::TipLabel(box);
    tipLabel->setGeometry(kFieldLeft, kFieldTop + C::heightControl, kRight - kFieldLeft, kTipHeight);
    tipLabel->setControls({vertifyTF, applyVertifyCodeBtn, uninstallBtn});
    panel().resize(kWidth, kButtonTop + kButton.height() + kPadding);

    titleLabel->setObjectName(QStringLiteral("titleLabel"));
    vertifyTF->setObjectName(QStringLiteral("vertifyTF"));
    applyVertifyCodeBtn->setObjectName(QStringLiteral("applyVertifyCodeBtn"));
    cancelBtn->setObjectName(QStringLiteral("cancelBtn"));
    uninstallBtn->setObjectName(QStringLiteral("uninstallBtn"));
    closeBtn->setObjectName(QStringLiteral("closeBtn"));
    tipLabel->setObjectName(QStringLiteral("tipLabel"));
}

void UnInstallAlertView::connectControls() {
    QObject::connect(vertifyTF, &QLineEdit::textChanged, this, &UnInstallAlertView::controlTextDidChange);
    QObject::connect(vertifyTF, &QLineEdit::returnPressed, this, &UnInstallAlertView::uninstallAction);
    QObject::connect(applyVertifyCodeBtn, &QPushButton::clicked, this, &UnInstallAlertView::applyVertifyCodeAction);
    QObject::connect(uninstallBtn, &QPushButton::clicked, this, &UnInstallAlertView::uninstallAction);
    QObject::connect(cancelBtn, &QPushButton::clicked, this, &UnInstallAlertView::dissmiss);
    QObject::connect(closeBtn, &QPushButton::clicked, this, &UnInstallAlertView::dissmiss);
}

void UnInstallAlertView::controlTextDidChange() {
    const QString typed = vertifyTF->text();
    const QString kept = firstCharacters(typed);
    if (kept == typed) return;
    const int cursor = vertifyTF->cursorPosition();
    vertifyTF->setText(kept);
    vertifyTF->setCursorPosition(std::min(cursor, static_cast<int>(kept.size())));
}

void UnInstallAlertView::applyVertifyCodeAction() {
    authorisation_->applyVertifyCode([this](const UninstallAuthorisation::Reply& reply) { answered(reply); });
}

void UnInstallAlertView::uninstallAction() {
    authorisation_->verify(vertifyTF->text().toStdString(), [this](const UninstallAuthorisation::Reply& reply) { answered(reply); });
}

void UnInstallAlertView::answered(const UninstallAuthorisation::Reply& reply) {
    using Kind = UninstallAuthorisation::Reply::Kind;
    const auto mood = reply.kind == Kind::Refused ? ui::TipLabel::Mood::Bad : ui::TipLabel::Mood::Good;
    tipLabel->setTip(QString::fromStdString(reply.tip), mood);
    if (reply.kind == Kind::Authorised) dissmiss();
}

QPoint UnInstallAlertView::panelPlace(QSize view) const {
    return {(view.width() - panel().width()) / 2, (view.height() - panel().height()) / 2};
}

QWidget* UnInstallAlertView::firstResponder() const { return vertifyTF; }

}  // namespace halvane::tools
