#pragma once

#include "tools/CleanRubbishModel.h"
#include "tools/ToolPanelView.h"

#include <vector>

namespace halvane::ui {
class AnimatedImageView;
class FilledButton;
class RowView;
class TableView;
}  // namespace halvane::ui

namespace halvane::tools {

/// The junk cleaner's categories. Nothing is scanned, measured or deleted yet: the scan shows its
/// animation and what its owner writes.
class CleanRubbishView final : public ToolPanelView {
public:
    explicit CleanRubbishView(QWidget* parent);

    /// The person wants a scan; may be empty.
    std::function<void()> scanBlock;

    void startScanAnimattion();
    void stopScanAnimattion();
    [[nodiscard]] bool isScanning() const;
    void updateTitle(const QString& title);
    void updateSubTitle(const QString& subTitle);

    [[nodiscard]] std::vector<CleanRubbishModel>& dataSources() { return dataSources_; }
    void reloadData();

protected:
    void place() override;

private:
    void setUpUI();
    void testData();
    [[nodiscard]] ui::RowView* cellFor(int row, ui::RowView* before) const;
    void selectionDidChange();

    std::vector<CleanRubbishModel> dataSources_;
    ui::AnimatedImageView* broomView;
    ui::ElidedLabel* titleLabel;
    ui::ElidedLabel* subTitleLabel;
    ui::FilledButton* scanBtn;
    ui::TableView* tableView;
};

}  // namespace halvane::tools
