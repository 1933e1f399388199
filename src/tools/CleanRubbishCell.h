#pragma once

#include "tools/CleanRubbishModel.h"
#include "ui/widgets/RowView.h"

namespace halvane::ui {
class ElidedLabel;
}

namespace halvane::tools {

/// One category of the junk cleaner: box, image and text. The row as a whole is what is clicked.
class CleanRubbishCell final : public ui::RowView {
public:
    CleanRubbishCell();

    void setModel(const CleanRubbishModel& model);

    /// Name of the image that stands for the box.
    [[nodiscard]] const QString& checkImageName() const { return checkImageName_; }
    [[nodiscard]] std::optional<bool> isChecked() const override { return isChecked_; }
    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::CheckBox; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QString iconName_;
    QString checkImageName_;
    bool isChecked_ = false;
    ui::ElidedLabel* contentLabel;
};

}  // namespace halvane::tools
