#pragma once

#include "tools/SoftListModel.h"
#include "ui/widgets/RowView.h"

#include <functional>

namespace halvane::ui {
class BorderedButton;
class ElidedLabel;
}  // namespace halvane::ui

namespace halvane::tools {

/// One application of the software manager, with the button that is to remove it.
class SoftListCell final : public ui::RowView {
public:
    SoftListCell();

    /// The person wants this application removed; may be empty.
    std::function<void(const SoftListModel&)> uninstallBlock;

    void setModel(const SoftListModel& model);
    void uninstallAction();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    SoftListModel model_;
    ui::ElidedLabel* nameLabel;
    ui::ElidedLabel* sizeLabel;
    ui::BorderedButton* uninstallBtn;
};

}  // namespace halvane::tools
