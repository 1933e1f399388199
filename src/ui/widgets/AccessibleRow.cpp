#include "ui/widgets/AccessibleRow.h"

#include "ui/widgets/RowView.h"

namespace halvane::ui {

AccessibleRow::AccessibleRow(RowView& row) : QAccessibleWidget(&row) {}

RowView& AccessibleRow::row() const { return static_cast<RowView&>(*widget()); }

QAccessible::Role AccessibleRow::role() const { return row().role(); }

QAccessible::State AccessibleRow::state() const {
    QAccessible::State state = QAccessibleWidget::state();
    state.focusable = true;
    state.selectable = true;
    state.selected = row().isSelected();
    if (const auto checked = row().isChecked()) {
        state.checkable = true;
        state.checked = *checked;
    }
    return state;
}

QStringList AccessibleRow::actionNames() const { return QStringList(pressAction()) << QAccessibleWidget::actionNames(); }

void AccessibleRow::doAction(const QString& actionName) {
    if (actionName != pressAction()) return QAccessibleWidget::doAction(actionName);
    if (const auto activated = row().onActivated) activated();
}

}  // namespace halvane::ui
