#include "ui/main/MainView.h"

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
#include <utility>

namespace halvane::ui {

namespace {

using C = HDCLUICenter;

constexpr int kMenuWidth = 200;
constexpr int kSuccess = 200;

}  // namespace

MainView::MainView(Collaborators collaborators) : collaborators_(std::move(collaborators)) {
    setObjectName(QStringLiteral("mainView"));
    setUpUI();
    leftMenuView_->selectMenuIndex(0);
    leftMenuView_->menuBlock = [this](int index) {
        collaborators_.log.write(fmt::format("选中了第 {} row", index));
        rightOperationView_->showPage(index);
    };
    requestWorkAddress();
}

MainView::~MainView() = default;

void MainView::setUpUI() {
    leftMenuView_ = new MainLeftMenuView(collaborators_.menu, this);
    rightOperationView_ = new MainRightOperationView(collaborators_.log, this);
    resize(C::mainContentSize);
    configUserInfo();
}

void MainView::configUserInfo() {
    if (const auto* model = collaborators_.menu.user.user_getUserInfo()) leftMenuView_->updateUserInfo(*model);
}

void MainView::requestWorkAddress() {
    const auto save = [&workplaces = collaborators_.workplaces](const util::Value& response) {
        const util::Value* payload = util::member(&response, "data");
        if (util::integerOf(util::member(&response, "code")) != kSuccess || !payload) return;
        const util::Value* list = util::member(payload, "work_address_list");
        if (list && list->list()) workplaces.saveWorkAddressInfoWithData(*list->list());
    };
    collaborators_.requests.getContactListUrlWithCurrentPage("0", "1", save, {});
}

// The arrow keys work from the start.
void MainView::viewDidMoveToWindow() { leftMenuView_->takeKeyboard(); }

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
