#pragma once

#include "ui/widgets/RowView.h"

namespace halvane::ui {

/// One workplace: its name and a button that is on for the one that is chosen.
class SetSelectAddressCell final : public RowView {
public:
    SetSelectAddressCell();

    void updateTitle(const QString& title, bool isSelect);

    [[nodiscard]] std::optional<bool> isChecked() const override { return isSelect_; }
    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::RadioButton; }

protected:
    [[nodiscard]] bool isMarked() const override { return isSelect_; }
    void paintEvent(QPaintEvent* event) override;

private:
    bool isSelect_ = false;
};

}  // namespace halvane::ui
