#pragma once

#include "ui/widgets/RowView.h"

namespace halvane::ui {

/// One entry of the person's menu: an image and a title.
class SetMenuCell final : public RowView {
public:
    /// An image of 20 pixels, by name.
    SetMenuCell(const QString& title, const QString& imageName);

    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::MenuItem; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString imageName_;
};

}  // namespace halvane::ui
