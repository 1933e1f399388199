#include "tools/CleanRubbishView.h"

#include "tools/CleanRubbishCell.h"
#include "ui/widgets/AnimatedImageView.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/FilledButton.h"
#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/TableView.h"

#include <algorithm>

namespace halvane::tools {

namespace {

using C = ui::HDCLUICenter;

constexpr int kBroom = 96;
constexpr int kBroomTop = 72;
constexpr int kTextGap = 20;
constexpr int kTitleTop = 88;
constexpr int kTitleHeight = 36;
constexpr int kSubTitleHeight = 22;
constexpr QSize kButton(160, 48);
constexpr int kButtonTop = 96;
constexpr int kTableTop = 192;
constexpr int kRow = 80;
constexpr int kFrame = 2;  // both edges of the table's border
constexpr int kBottom = 24;

}  // namespace

CleanRubbishView::CleanRubbishView(QWidget* parent) : ToolPanelView(QStringLiteral("垃圾清理"), parent) {
    setUpUI();
    testData();
    reloadData();
}

void CleanRubbishView::setUpUI() {
    broomView = new ui::AnimatedImageView(QStringLiteral("Broom.gif"), this);
    titleLabel = new ui::ElidedLabel(QString(), C::font(C::Type::Heading, QFont::Bold), C::colorText1, this);
    subTitleLabel = new ui::ElidedLabel(QString(), C::font(C::Type::Body), C::colorText2, this);
    scanBtn = new ui::FilledButton(QStringLiteral("开始扫描"), this, C::Type::RowTitle);
    tableView = new ui::TableView(QStringLiteral("垃圾类别"), {.rowHeight = kRow, .frame = ui::TableView::Frame::Round},
                                  {.numberOfRows = [this] { return static_cast<int>(dataSources_.size()); },
                                   .viewForRow = [this](int row, ui::RowView* before) { return cellFor(row, before); }},
                                  this);
    tableView->selectionDidChange = [this] { selectionDidChange(); };
    QObject::connect(scanBtn, &QPushButton::clicked, this, [this] {
        if (const auto scan = scanBlock) scan();
    });
    setObjectName(QStringLiteral("cleanView"));
    broomView->setObjectName(QStringLiteral("broomView"));
    titleLabel->setObjectName(QStringLiteral("titleLabel"));
    subTitleLabel->setObjectName(QStringLiteral("subTitleLabel"));
    scanBtn->setObjectName(QStringLiteral("scanBtn"));
    tableView->setObjectName(QStringLiteral("tableView"));
}

void CleanRubbishView::testData() {
    for (CleanRubbishModel& model : CleanRubbishModel::categories()) dataSources_.push_back(std::move(model));
}

ui::RowView* CleanRubbishView::cellFor(int row, ui::RowView* before) const {
    auto* cell = before ? static_cast<CleanRubbishCell*>(before) : new CleanRubbishCell;
    cell->setModel(dataSources_.at(static_cast<std::size_t>(row)));
    return cell;
}

void CleanRubbishView::selectionDidChange() {
    CleanRubbishModel& model = dataSources_.at(static_cast<std::size_t>(tableView->selectedRow()));
    if (model.selectEnable) model.isSelect = !model.isSelect;
    reloadData();
}

void CleanRubbishView::reloadData() { tableView->reloadData(); }

void CleanRubbishView::startScanAnimattion() {
    broomView->startAnimating();
    broomView->setAccessibleName(QStringLiteral("正在扫描"));
}

void CleanRubbishView::stopScanAnimattion() {
    broomView->stopAnimating();
    broomView->setAccessibleName(QString());
}

bool CleanRubbishView::isScanning() const { return broomView->isAnimating(); }

void CleanRubbishView::updateTitle(const QString& title) { titleLabel->setWholeText(title); }

void CleanRubbishView::updateSubTitle(const QString& subTitle) { subTitleLabel->setWholeText(subTitle); }

void CleanRubbishView::place() {
    const QRect column = C::contentColumn(size());
    const int right = column.right() + 1;
    broomView->setGeometry(column.left(), kBroomTop, kBroom, kBroom);
    const int textLeft = column.left() + kBroom + kTextGap;
    const int textWidth = right - kButton.width() - kTextGap - textLeft;
    titleLabel->setGeometry(textLeft, kTitleTop, textWidth, kTitleHeight);
    subTitleLabel->setGeometry(textLeft, kTitleTop + kTitleHeight, textWidth, kSubTitleHeight);
    scanBtn->setVisibleGeometry({{right - kButton.width(), kButtonTop}, kButton});
    const int wanted = static_cast<int>(dataSources_.size()) * kRow + kFrame;
    tableView->setGeometry(column.left(), kTableTop, column.width(), std::min(wanted, height() - kTableTop - kBottom));
}

}  // namespace halvane::tools
