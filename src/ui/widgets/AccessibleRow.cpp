#include "ui/widgets/AccessibleRow.h"

#include "ui/widgets/RowView.h"
#include "ui/widgets/TableView.h"

namespace halvane::ui {

namespace {

QAccessibleInterface* interfaceOf(const QString& /*className*/, QObject* object) {
    if (auto* row = dynamic_cast<RowView*>(object)) return new AccessibleRow(*row);
    if (auto* table = dynamic_cast<TableView*>(object)) return new QAccessibleWidget(table, QAccessible::List);
    return nullptr;
}

}  // namespace

AccessibleRow::AccessibleRow(RowView& row) : QAccessibleWidget(&row) {}

void AccessibleRow::install() {
    static const bool installed = (QAccessible::installFactory(interfaceOf), true);
    Q_UNUSED(installed);
}

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
