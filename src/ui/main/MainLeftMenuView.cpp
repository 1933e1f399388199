#include "ui/main/MainLeftMenuView.h"

#include "platform/Updater.h"
#include "session/HDCLUserConfig.h"
#include "tools/UpdateVersionPanel.h"
#include "ui/main/MainMenuCell.h"
#include "ui/main/MainMenuHeadView.h"
#include "ui/main/SelectAddressWindow.h"
#include "ui/main/SetViewController.h"
#include "ui/main/SidePanels.h"
#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/TableView.h"
#include "util/NotificationCenter.h"

#include <QCoreApplication>
#include <array>
#include <utility>

namespace halvane::ui {

namespace {

using C = HDCLUICenter;

constexpr QRect kHead(12, 16, 176, 60);
constexpr int kListTop = 88;
constexpr int kRow = 48;

struct MenuEntry {
    const char* title;
    const char* selectedImage;
    const char* unselectedImage;
};
constexpr std::array kEntries{
    MenuEntry{"安全", "btn_select_safe", "btn_unselect_safe"},   MenuEntry{"设备", "btn_select_mydevice", "btn_unselect_mydevice"},
    MenuEntry{"网络", "btn_select_vpn", "btn_unselect_vpn"},     MenuEntry{"服务", "btn_select_servicemsg", "btn_unselect_servicemsg"},
    MenuEntry{"功能", "btn_select_clean", "btn_unselect_clean"},
};

RowView* cellFor(int row, RowView* before) {
    if (before) return before;
    const MenuEntry& entry = kEntries.at(static_cast<std::size_t>(row));
    return new MainMenuCell({QString::fromUtf8(entry.title), QLatin1String(entry.selectedImage), QLatin1String(entry.unselectedImage)});
}

}  // namespace

MainLeftMenuView::MainLeftMenuView(Collaborators collaborators, QWidget* parent)
    : QWidget(parent), collaborators_(std::move(collaborators)) {
    setObjectName(QStringLiteral("leftMenuView"));
    setUpUI();
}

MainLeftMenuView::~MainLeftMenuView() = default;

void MainLeftMenuView::setUpUI() {
    headView = new MainMenuHeadView(collaborators_.avatars, this);
    headView->setObjectName(QStringLiteral("headView"));
    headView->setVisibleGeometry(kHead);
    headView->clickAction = [this] { showSetMenu(); };

    tableView =
        new TableView(QStringLiteral("页面"),
                      {.rowHeight = kRow, .selection = TableView::Selection::FollowsKeyboard, .scrolling = TableView::Scrolling::Never},
                      {.numberOfRows = [] { return static_cast<int>(kEntries.size()); }, .viewForRow = cellFor}, this);
    tableView->setObjectName(QStringLiteral("tableView"));
    tableView->setGeometry(kHead.left(), kListTop, kHead.width(), kRow * static_cast<int>(kEntries.size()));
    tableView->selectionDidChange = [this] { menuSelected(tableView->selectedRow()); };
    reloadTableView();
}

void MainLeftMenuView::takeKeyboard() { tableView->takeKeyboard(Qt::OtherFocusReason); }

void MainLeftMenuView::selectMenuIndex(int index) {
    if (index < 0 || index >= static_cast<int>(kEntries.size())) return;
    menuSelected(index);
}

void MainLeftMenuView::menuSelected(int index) {
    curSelectIndex_ = index;
    if (menuBlock) menuBlock(index);
    reloadTableView();
}

void MainLeftMenuView::updateUserInfo(const session::HDCLUserModel& model) { headView->setModel(model); }

void MainLeftMenuView::reloadTableView() {
    tableView->reloadData();
    tableView->selectRow(curSelectIndex_);
}

void MainLeftMenuView::showSetMenu() {
    if (popver_ && popver_->isOverlaid()) return closeSetMenu();
    if (!popver_) {
        popver_ = std::make_unique<SetViewController>(collaborators_.avatars);
        popver_->updateVersionBlock = [this] { updateVersion(); };
        popver_->aboutBlock = [this] { aboutUs(); };
        popver_->systemSetBlock = [this] { systemSet(); };
        popver_->LogoutBlock = [this] {
            dropSetMenu();
            logout();
        };
        popver_->didClose = [this] { headView->setOpen(false); };
        popver_->quitBlock = [this] {
            dropSetMenu();
            QCoreApplication::quit();
        };
        if (const auto* model = collaborators_.user.user_getUserInfo()) popver_->setModel(*model);
    }
    popver_->showOnView(parentWidget());
    headView->setOpen(true);
}

void MainLeftMenuView::closeSetMenu() {
    if (popver_) popver_->close();
}

void MainLeftMenuView::dropSetMenu() {
    closeSetMenu();
    // Later, because one of its rows is what called.
    if (popver_) popver_.release()->deleteLater();
}

void MainLeftMenuView::logout() {
    closeSetMenu();
    // They speak for the person who leaves.
    closeUpdateVersion();
    closeSystemSet();
    collaborators_.notifications.post("HDCL_Notification_Logout");
    collaborators_.user.user_deleteUserInfo();
    window()->hide();
    collaborators_.showLoginWindow();
}

void MainLeftMenuView::updateVersion() {
    dropSetMenu();
    collaborators_.updater.checkForUpdates();
}

void MainLeftMenuView::aboutUs() {
    dropSetMenu();
    collaborators_.panels.versionPanel().setWindowTitle(QStringLiteral("关于我们"));
    showUpdateVersion();
}

void MainLeftMenuView::systemSet() {
    dropSetMenu();
    showSystemSet();
}

void MainLeftMenuView::showUpdateVersion() {
    collaborators_.panels.versionPanel().center();
    collaborators_.panels.versionPanel().makeKeyAndOrderFront();
}

void MainLeftMenuView::closeUpdateVersion() { collaborators_.panels.closeVersionPanel(); }

void MainLeftMenuView::showSystemSet() {
    collaborators_.panels.systemSetWindow().center();
    collaborators_.panels.systemSetWindow().makeKeyAndOrderFront();
}

void MainLeftMenuView::closeSystemSet() { collaborators_.panels.closeSystemSetWindow(); }

}  // namespace halvane::ui
