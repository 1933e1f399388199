#include "ui/main/MainView.h"

#include "device/CompanyAccess.h"
#include "device/HVDeviceStatusMonitoring.h"
#include "device/HVStatusBarConfig.h"
#include "service/HVRequstHelper.h"
#include "session/HDCLUserConfig.h"
#include "session/WorkAddressInfoHelper.h"
#include "tools/UnInstallAlertView.h"
#include "ui/main/MainRightOperationView.h"
#include "ui/widgets/HDCLBaseWindow.h"
#include "ui/widgets/HDCLUICenter.h"
#include "util/Log.h"
#include "util/Value.h"

#include <fmt/format.h>

#include <QPointer>
#include <utility>

namespace halvane::ui {

namespace {

using C = HDCLUICenter;

constexpr int kMenuWidth = 200;

}  // namespace

MainView::MainView(Collaborators collaborators) : collaborators_(std::move(collaborators)), notices_(collaborators_.desktopNotifications) {
    setObjectName(QStringLiteral("mainView"));
    setUpUI();
    leftMenuView_->selectMenuIndex(0);
    leftMenuView_->menuBlock = [this](int index) {
        collaborators_.log.write(fmt::format("选中了第 {} row", index));
        rightOperationView_->showPage(index);
    };
    requestWorkAddress();
    startDeviceStatusMonitoring();
}

MainView::~MainView() = default;

void MainView::setUpUI() {
    leftMenuView_ = new MainLeftMenuView(collaborators_.menu, this);
    rightOperationView_ = new MainRightOperationView(collaborators_.device, collaborators_.log, this);
    resize(C::mainContentSize);
    configUserInfo();
}

void MainView::configUserInfo() {
    if (const auto* model = collaborators_.menu.user.user_getUserInfo()) leftMenuView_->updateUserInfo(*model);
}

void MainView::requestWorkAddress() {
    const auto save = [&workplaces = collaborators_.workplaces](const util::Value& response) {
        const util::Value* payload = util::member(&response, "data");
        if (!service::HVRequstHelper::isAccepted(response) || !payload) return;
        const util::Value* list = util::member(payload, "work_address_list");
        if (list && list->list()) workplaces.saveWorkAddressInfoWithData(*list->list());
    };
    collaborators_.requests.getContactListUrlWithCurrentPage("0", "1", save, {});
}

void MainView::startDeviceStatusMonitoring() {
    collaborators_.monitoring.startMonitoring();
    collaborators_.monitoring.setMonitoringBlock([self = QPointer(this)](bool locked, bool lost) {
        if (self) self->react(locked, lost);
    });
}

void MainView::react(bool locked, bool lost) {
    // The logout forgets whose certificate it is.
    const auto* model = collaborators_.menu.user.user_getUserInfo();
    const auto certificateName = model ? model->ad_cert_name : std::nullopt;
    if (lost) leftMenuView_->logout();
    if (locked) collaborators_.companyAccess.revoke(certificateName);
    notices_.stateIs(locked, lost);
}

void MainView::viewDidMoveToWindow() {
    leftMenuView_->takeKeyboard();  // the arrow keys work from the start
    collaborators_.statusBar.addStatusMenu();
    collaborators_.statusBar.setUninstallMenuBlock([self = QPointer(this)] {
        if (self) self->uninstallMenuItemChosen();
    });
}

void MainView::uninstallMenuItemChosen() {
    // The icon outlives the session; the window of who left must not come back with it.
    if (collaborators_.menu.user.user_isLogin()) {
        showUninstallAlert();
    } else {
        collaborators_.uninstallAfterLogin();
    }
}

void MainView::showUninstallAlert() {
    auto* window = dynamic_cast<HDCLBaseWindow*>(this->window());
    if (!window) return;
    window->makeKeyAndOrderFront();
    window->center();
    if (!uninstallAlert_) uninstallAlert_ = collaborators_.makeUninstallAlert();
    if (uninstallAlert_->isShow()) return;
    leftMenuView_->closeSetMenu();
    uninstallAlert_->showOnView(this);
}

void MainView::resizeEvent(QResizeEvent*) {
    leftMenuView_->setGeometry(0, 0, kMenuWidth, height());
    rightOperationView_->setGeometry(kMenuWidth, 0, width() - kMenuWidth, height());
}

}  // namespace halvane::ui
