#include "ui/widgets/Accessibility.h"

#include "ui/widgets/AccessibleRow.h"
#include "ui/widgets/OverlayView.h"
#include "ui/widgets/PictureView.h"
#include "ui/widgets/RowView.h"
#include "ui/widgets/TableView.h"

namespace halvane::ui {

namespace {

/// Asked anew each time, because a picture may begin or cease to say something.
class AccessiblePicture final : public QAccessibleWidget {
public:
    using QAccessibleWidget::QAccessibleWidget;
    [[nodiscard]] QAccessible::Role role() const override {
        return widget()->accessibleName().isEmpty() ? QAccessible::Client : QAccessible::Graphic;
    }
};

QAccessibleInterface* interfaceOf(const QString& /*className*/, QObject* object) {
    if (auto* row = dynamic_cast<RowView*>(object)) return new AccessibleRow(*row);
    if (auto* table = dynamic_cast<TableView*>(object)) return new QAccessibleWidget(table, QAccessible::List);
    if (auto* overlay = dynamic_cast<OverlayView*>(object)) return new QAccessibleWidget(overlay, QAccessible::Dialog);
    if (auto* picture = dynamic_cast<PictureView*>(object)) return new AccessiblePicture(picture);
    return nullptr;
}

}  // namespace

void Accessibility::install() { QAccessible::installFactory(interfaceOf); }

}  // namespace halvane::ui
