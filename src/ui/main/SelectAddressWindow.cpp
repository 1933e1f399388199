#include "ui/main/SelectAddressWindow.h"

#include "platform/Preferences.h"
#include "service/HVRequstHelper.h"
#include "session/HDCLUserConfig.h"
#include "session/WorkAddressInfoHelper.h"
#include "ui/main/SetSelectAddressCell.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/SwitchButton.h"
#include "ui/widgets/TableView.h"
#include "util/Log.h"

#include <fmt/format.h>
#include <utility>

namespace halvane::ui {

namespace {

using C = HDCLUICenter;

constexpr const char* kIsAutoLogin = "HDCL_ISAUTOLOGIN";
constexpr QSize kSize(300, 400);
constexpr int kPadding = 20;
constexpr int kListTop = 56;
constexpr int kListBottom = 338;
constexpr int kRow = 40;
constexpr int kSwitchRow = 356;  // top of the last row, as high as the switch
constexpr int kSwitchHeight = 24;

}  // namespace

SelectAddressWindow::SelectAddressWindow(Collaborators collaborators) : collaborators_(collaborators) {
    setObjectName(QStringLiteral("SelectAddressWindow"));
    setUpUI();
    setContentSize(kSize);
    loadAddressData();
}

void SelectAddressWindow::setUpUI() {
    constexpr int width = kSize.width() - 2 * kPadding;
    titleTF = new ElidedLabel(QStringLiteral("您所在的职场"), C::font(C::Type::Body, QFont::Bold), C::colorText1, this);
    titleTF->setGeometry(kPadding, kPadding, width, kListTop - kPadding - 8);
    MenuTableView = new TableView(titleTF->text(), {.rowHeight = kRow, .frame = TableView::Frame::Round},
                                  {.numberOfRows = [this] { return static_cast<int>(dataSource_.size()); },
                                   .viewForRow = [this](int row, RowView* before) { return cellFor(row, before); }},
                                  this);
    MenuTableView->setGeometry(kPadding, kListTop, width, kListBottom - kListTop);
    MenuTableView->selectionDidChange = [this] { tableViewSelectionDidChange(); };

    autoSwitch = new SwitchButton(QStringLiteral("开启自动登录"), this);
    const QSize switchSize = autoSwitch->sizeHint();
    const int switchLeft = kSize.width() - kPadding + C::ringMargin - switchSize.width();
    autoSwitch->setGeometry({{switchLeft, kSwitchRow - C::ringMargin}, switchSize});
    autoLoginTF = new ElidedLabel(autoSwitch->text(), C::font(C::Type::Body), C::colorText1, this);
    autoLoginTF->setGeometry(kPadding, kSwitchRow, switchLeft - kPadding - 8, kSwitchHeight);
    QObject::connect(autoSwitch, &QCheckBox::toggled, this, [this] {
        if (!isSettingState_) updateAutoLoginAction();
    });
    showAutoLogin();

    titleTF->setObjectName(QStringLiteral("titleTF"));
    MenuTableView->setObjectName(QStringLiteral("MenuTableView"));
    autoLoginTF->setObjectName(QStringLiteral("autoLoginTF"));
    autoSwitch->setObjectName(QStringLiteral("autoSwitch"));
}

const std::optional<util::Value::List>& SelectAddressWindow::addressInfos() {
    if (!std::exchange(addressInfosRead_, true)) addressInfos_ = collaborators_.workplaces.getWorkAddressInfo();
    return addressInfos_;
}

void SelectAddressWindow::loadAddressData() {
    const auto& infos = addressInfos();
    if (!infos || infos->empty()) return;
    dataSource_.clear();
    for (const util::Value& entry : *infos) {
        // Anything else could be neither shown nor sent.
        if (const util::Dictionary* dictionary = entry.dictionary())
            dataSource_.push_back(session::WorkAddressModel::fromDictionary(*dictionary));
    }
    markWorkplace();
    MenuTableView->reloadData();
}

void SelectAddressWindow::markWorkplace() {
    currentSelectIndex_ = 0;
    const session::HDCLUserModel* user = collaborators_.user.user_getUserInfo();
    markedFor_ = user ? user->numId : std::nullopt;
    if (!user || !user->work_address) return;
    for (std::size_t index = 0; index < dataSource_.size(); ++index)
        if (dataSource_[index].value == user->work_address) currentSelectIndex_ = static_cast<int>(index);
}

RowView* SelectAddressWindow::cellFor(int row, RowView* before) {
    collaborators_.log.write(fmt::format("dianle {}", row));
    auto* cell = before ? static_cast<SetSelectAddressCell*>(before) : new SetSelectAddressCell;
    const auto& model = dataSource_.at(static_cast<std::size_t>(row));
    // A workplace without a name is still one to choose, and a row always has a name.
    const auto& title = model.name && !model.name->empty() ? model.name : model.value;
    cell->updateTitle(QString::fromStdString(title.value_or("")), row == currentSelectIndex_);
    return cell;
}

void SelectAddressWindow::tableViewSelectionDidChange() {
    const int row = MenuTableView->selectedRow();
    if (row < 0 || row >= static_cast<int>(dataSource_.size())) return;  // nothing was chosen
    currentSelectIndex_ = row;
    MenuTableView->reloadData();
    const session::HDCLUserModel* user = collaborators_.user.user_getUserInfo();
    collaborators_.requests.updateOfficeAddressWithUserID(
        user ? user->numId : std::nullopt, dataSource_[static_cast<std::size_t>(row)].value,
        [&log = collaborators_.log](const util::Value& response) {
            log.write(fmt::format("workplace: {}", util::printed(util::textOf(util::member(&response, "msg")))));
        },
        [&log = collaborators_.log](const std::optional<util::Error>& error) {
            log.write(fmt::format("workplace: not sent: {}", error ? error->description : "no network"));
        });
}

void SelectAddressWindow::updateAutoLoginAction() {
    const bool on = autoSwitch->isChecked();
    collaborators_.log.write(on ? "on" : "off");
    collaborators_.preferences.set(kIsAutoLogin, on);
}

void SelectAddressWindow::showAutoLogin() {
    isSettingState_ = true;
    autoSwitch->setChecked(collaborators_.preferences.boolean(kIsAutoLogin));
    isSettingState_ = false;
}

void SelectAddressWindow::showEvent(QShowEvent* event) {
    PanelWindow::showEvent(event);
    showAutoLogin();  // the login window has a switch of its own
    if (dataSource_.empty()) return;
    const session::HDCLUserModel* user = collaborators_.user.user_getUserInfo();
    if (user && user->numId != markedFor_) {
        // Somebody else: what the one before chose is no choice of theirs.
        markWorkplace();
        MenuTableView->selectRow(-1);
        MenuTableView->reloadData();
    }
    MenuTableView->setTabStop(currentSelectIndex_);
}

}  // namespace halvane::ui
