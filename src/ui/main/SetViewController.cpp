#include "ui/main/SetViewController.h"

#include "session/HDCLUserModel.h"
#include "ui/main/AvatarView.h"
#include "ui/main/SetMenuCell.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/TableView.h"
#include "util/Value.h"

#include <QFrame>

namespace halvane::ui {

namespace {

using C = HDCLUICenter;

constexpr int kWidth = 272;
constexpr QPoint kPlace(12, 84);
constexpr int kPadding = 20;
constexpr int kAvatar = 48;
constexpr int kTextLeft = kPadding + kAvatar + 12;
constexpr int kLineTops[] = {16, 39, 59};
constexpr int kNameHeight = 23;
constexpr int kLineHeight = 20;
constexpr int kRow = 40;
constexpr int kRowInset = 8;
constexpr int kListTop = 108;
constexpr std::array kImages{"ui_update", "ui_about", "ui_settings"};

}  // namespace

SetViewController::SetViewController(AvatarStore& avatars)
    : OverlayView(QStringLiteral("个人菜单"), Ground::Clear), avatars_(avatars), avatar_(new AvatarView(&panel())) {
    setObjectName(QStringLiteral("popver"));
    setUpUI();
}

void SetViewController::setUpUI() {
    const auto addLabel = [this](const char* name, int line, const QFont& font, const QColor& color) {
        auto* label = new ElidedLabel(QString(), font, color, &panel());
        label->setObjectName(QLatin1String(name));
        label->setGeometry(kTextLeft, kLineTops[line], kWidth - kTextLeft - kPadding, line == 0 ? kNameHeight : kLineHeight);
        return label;
    };
    avatar_->setGeometry(kPadding, kPadding, kAvatar, kAvatar);
    nameLabel = addLabel("nameLabel", 0, C::font(C::Type::Body, QFont::Bold), C::colorText1);
    departmentLabel = addLabel("departmentLabel", 1, C::font(C::Type::Caption), C::colorText2);
    emailLabel = addLabel("emailLabel", 2, C::font(C::Type::Caption), C::colorText2);

    auto* line = new QFrame(&panel());
    line->setGeometry(kPadding, kListTop - 10, kWidth - 2 * kPadding, 1);
    line->setAutoFillBackground(true);
    QPalette colors = line->palette();
    colors.setColor(QPalette::Window, C::colorLine);
    line->setPalette(colors);

    tableView = new TableView(
        QStringLiteral("设置"), {.rowHeight = kRow, .scrolling = TableView::Scrolling::Never},
        {.numberOfRows = [] { return static_cast<int>(funcTitles.size()); },
         .viewForRow =
             [](int row, RowView* before) {
                 const auto index = static_cast<std::size_t>(row);
                 return before ? before : new SetMenuCell(QString::fromUtf8(funcTitles.at(index)), QLatin1String(kImages.at(index)));
             }},
        &panel());
    tableView->setObjectName(QStringLiteral("tableView"));
    constexpr int listHeight = kRow * static_cast<int>(funcTitles.size());
    tableView->setGeometry(kRowInset, kListTop, kWidth - 2 * kRowInset, listHeight);
    tableView->reloadData();
    tableView->selectionDidChange = [this] { didSelectRow(tableView->selectedRow()); };
    panel().resize(kWidth, kListTop + listHeight + kRowInset);
}

void SetViewController::setModel(const session::HDCLUserModel& model) {
    avatar_->setAddress(avatars_, model.header_img);
    nameLabel->setWholeText(QStringLiteral("姓名：%1").arg(QString::fromStdString(util::printed(model.nick_name))));
    departmentLabel->setWholeText(QStringLiteral("部门：%1").arg(QString::fromStdString(util::printed(model.department_name))));
    emailLabel->setWholeText(QString::fromStdString(model.email.value_or("")));
}

void SetViewController::close() {
    if (!isOverlaid()) return;
    withdraw();
    if (didClose) didClose();
}

void SetViewController::didSelectRow(int row) {
    const std::array blocks{updateVersionBlock, aboutBlock, systemSetBlock, LogoutBlock, quitBlock};
    if (row < 0 || row >= static_cast<int>(blocks.size())) return;
    if (const auto& block = blocks[static_cast<std::size_t>(row)]) block();
}

QPoint SetViewController::panelPlace(QSize) const { return kPlace; }

QWidget* SetViewController::firstResponder() const { return tableView->rows().front(); }

}  // namespace halvane::ui
