#include "tools/UpdateVersionPanel.h"

#include "platform/Updater.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/FilledButton.h"
#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/ImageView.h"
#include "util/Log.h"

#include <algorithm>

namespace halvane::tools {

namespace {

using C = ui::HDCLUICenter;

constexpr QSize kSize(400, 300);
constexpr int kMargin = 24;
constexpr int kLogo = 88;
constexpr int kLogoTop = 32;
constexpr QSize kButton(180, 40);  // wider for a long version
constexpr int kButtonTop = 144;
constexpr int kVersionHeight = 26;
constexpr int kVersionBottom = 70;  // from the panel's lower edge
constexpr int kVersionBottomAlone = 120;
constexpr int kDetailTop = 244;
constexpr int kDetailHeight = 20;

}  // namespace

UpdateVersionPanel::UpdateVersionPanel(platform::Updater& updater, util::Log& log, const std::string& localVersion)
    : updater_(updater), log_(log) {
    setObjectName(QStringLiteral("UpdateVersionPanel"));
    setStandardButtonHidden(StandardButton::Close);
    setStandardButtonHidden(StandardButton::Miniaturize);
    setUpUI(localVersion);
    setContentSize(kSize);
    observeUpdater();
    updater_.checkForUpdateInformation();
}

void UpdateVersionPanel::setUpUI(const std::string& localVersion) {
    iconImgView = new ui::ImageView(QStringLiteral("login_prompt"), this);
    updateBtn = new ui::FilledButton(QStringLiteral("已经是最新版本"), this);
    updateBtn->setGround(ui::FilledButton::Ground::Slate);
    versionLabel = new ui::ElidedLabel(QStringLiteral("当前版本：V %1").arg(QString::fromStdString(localVersion)),
                                       C::font(C::Type::RowTitle, QFont::Bold), C::colorText1, this);
    versionLabel->setAlignment(Qt::AlignCenter);
    detailLabel = new ui::ElidedLabel(QStringLiteral("Halvane 2026 · IT 服务热线 8000"), C::font(C::Type::Caption), C::colorText2, this);
    detailLabel->setAlignment(Qt::AlignCenter);
    iconImgView->setObjectName(QStringLiteral("iconImgView"));
    updateBtn->setObjectName(QStringLiteral("updateBtn"));
    versionLabel->setObjectName(QStringLiteral("versionLabel"));
    detailLabel->setObjectName(QStringLiteral("detailLabel"));
    QObject::connect(updateBtn, &QPushButton::clicked, this, &UpdateVersionPanel::updateAction);
}

void UpdateVersionPanel::observeUpdater() {
    updater_.setDelegate({.didFindValidUpdate =
                              [this, alive = std::weak_ptr(alive_)](const std::string& versionString) {
                                  if (!alive.expired()) didFindValidUpdate(versionString);
                              },
                          .didNotFindUpdate =
                              [this, alive = std::weak_ptr(alive_)] {
                                  if (!alive.expired()) didNotFindUpdate();
                              }});
}

void UpdateVersionPanel::didFindValidUpdate(const std::string& versionString) {
    log_.write("发现新版本" + versionString);
    updateBtn->setText(QStringLiteral("发现新版本V%1").arg(QString::fromStdString(versionString).simplified()));
    updateBtn->setGround(ui::FilledButton::Ground::ThemeOrange);
    place();
}

void UpdateVersionPanel::didNotFindUpdate() {
    log_.write("已经是最新版本");
    updateBtn->setText(QStringLiteral("已经是最新版本"));
    updateBtn->setGround(ui::FilledButton::Ground::Slate);
    place();
}

void UpdateVersionPanel::updateAction() {
    close();
    updater_.checkForUpdates();
}

void UpdateVersionPanel::updateBtnIsHidden(bool hidden) {
    updateBtn->setVisible(!hidden);
    place();
}

void UpdateVersionPanel::place() {
    const int centre = width() / 2;
    iconImgView->setGeometry(centre - kLogo / 2, kLogoTop, kLogo, kLogo);
    const int wanted = updateBtn->sizeHint().width() - 2 * C::ringMargin;
    const int buttonWidth = std::clamp(wanted, kButton.width(), width() - 2 * kMargin);
    updateBtn->setVisibleGeometry({centre - buttonWidth / 2, kButtonTop, buttonWidth, kButton.height()});
    const int bottom = height() - (updateBtn->isHidden() ? kVersionBottomAlone : kVersionBottom);
    versionLabel->setGeometry(kMargin, bottom - kVersionHeight, width() - 2 * kMargin, kVersionHeight);
    detailLabel->setGeometry(kMargin, kDetailTop, width() - 2 * kMargin, kDetailHeight);
}

void UpdateVersionPanel::resizeEvent(QResizeEvent* event) {
    PanelWindow::resizeEvent(event);
    place();
}

}  // namespace halvane::tools
