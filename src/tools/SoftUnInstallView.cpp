#include "tools/SoftUnInstallView.h"

#include "tools/SoftListCell.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/TableView.h"
#include "ui/widgets/ToolButton.h"

#include <QPointer>

namespace halvane::tools {

namespace {

using C = ui::HDCLUICenter;

constexpr int kTableTop = 72;
constexpr int kRow = 80;
constexpr int kScrollBarGap = 14;  // between the rows and the scroll bar's thumb
constexpr int kScrollBar = 14;
constexpr int kSamples = 10;

}  // namespace

SoftUnInstallView::SoftUnInstallView(QWidget* parent) : ToolPanelView(QStringLiteral("软件管理"), parent) {
    setUpUI();
    testData();
    tableView->reloadData();
}

void SoftUnInstallView::setUpUI() {
    setObjectName(QStringLiteral("uninstallView"));
    addBarTitle(QStringLiteral("软件管理"));
    auto* refreshBtn = addBarButton(QStringLiteral("ui_refresh"), QStringLiteral("刷新"));
    refreshBtn->setObjectName(QStringLiteral("refreshBtn"));
    QObject::connect(refreshBtn, &QPushButton::clicked, this, &SoftUnInstallView::refreshAction);
    tableView = new ui::TableView(QStringLiteral("软件"), {.rowHeight = kRow},
                                  {.numberOfRows = [this] { return static_cast<int>(dataSources_.size()); },
                                   .viewForRow = [this](int row, ui::RowView* /*before*/) { return cellFor(row); }},
                                  this);
    tableView->setObjectName(QStringLiteral("tableView"));
}

void SoftUnInstallView::testData() {
    for (int count = 0; count < kSamples; ++count)
        dataSources_.push_back({.softIcon = "rubbish_broser", .softName = "xxAPP", .softSize = "xxMB"});
}

ui::RowView* SoftUnInstallView::cellFor(int row) {
    auto* cell = new SoftListCell;
    cell->setModel(dataSources_.at(static_cast<std::size_t>(row)));
    cell->uninstallBlock = [panel = QPointer<QWidget>(this), this](const SoftListModel& model) {
        if (panel) unintallSoftAction(model);
    };
    return cell;
}

void SoftUnInstallView::refreshAction() { tableView->reloadData(); }

void SoftUnInstallView::unintallSoftAction(const SoftListModel& /*model*/) {}

void SoftUnInstallView::place() {
    const QRect column = C::contentColumn(size());
    tableView->setGeometry(column.left(), kTableTop, column.width() + kScrollBarGap + kScrollBar, height() - kTableTop - 1);
}

}  // namespace halvane::tools
