#pragma once

#include "tools/SoftListModel.h"
#include "tools/ToolPanelView.h"

#include <vector>

namespace halvane::ui {
class RowView;
class TableView;
}  // namespace halvane::ui

namespace halvane::tools {

/// The software manager. Its list is a sample yet: nothing is listed, measured or removed.
class SoftUnInstallView final : public ToolPanelView {
public:
    explicit SoftUnInstallView(QWidget* parent);

    /// Draws the same rows again.
    void refreshAction();
    void unintallSoftAction(const SoftListModel& model);

protected:
    void place() override;

private:
    void setUpUI();
    void testData();
    [[nodiscard]] ui::RowView* cellFor(int row);

    std::vector<SoftListModel> dataSources_;
    ui::TableView* tableView;
};

}  // namespace halvane::tools
