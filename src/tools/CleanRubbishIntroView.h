#pragma once

#include "tools/ToolPanelView.h"

namespace halvane::ui {
class FilledButton;
class ImageView;
}  // namespace halvane::ui

namespace halvane::tools {

/// What the junk cleaner is for, before it scans.
class CleanRubbishIntroView final : public ToolPanelView {
public:
    explicit CleanRubbishIntroView(QWidget* parent);

    /// The person wants a scan; may be empty.
    std::function<void()> scanBlock;

protected:
    void place() override;

private:
    ui::ImageView* imageView;
    ui::ElidedLabel* titleLabel;
    ui::ElidedLabel* subTitleLabel;
    ui::FilledButton* scanBtn;
};

}  // namespace halvane::tools
