#pragma once

#include <QAccessibleWidget>

namespace halvane::ui {

class RowView;

/// What screen readers and other assistive programs see of a row.
class AccessibleRow final : public QAccessibleWidget {
public:
    explicit AccessibleRow(RowView& row);

    [[nodiscard]] QAccessible::Role role() const override;
    [[nodiscard]] QAccessible::State state() const override;
    [[nodiscard]] QStringList actionNames() const override;
    void doAction(const QString& actionName) override;

private:
    [[nodiscard]] RowView& row() const;
};

}  // namespace halvane::ui
