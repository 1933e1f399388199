#include "ui/widgets/Accessibility.h"

#include "ui/widgets/AccessibleRow.h"
#include "ui/widgets/OverlayView.h"
#include "ui/widgets/PictureView.h"
#include "ui/widgets/RowView.h"
#include "ui/widgets/SelfDescribing.h"
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

class AccessibleSelfDescribing final : public QAccessibleWidget {
public:
    AccessibleSelfDescribing(QWidget* widget, const SelfDescribing& self) : QAccessibleWidget(widget, self.accessibleRole()), self_(self) {}
    [[nodiscard]] QString text(QAccessible::Text which) const override {
        return which == QAccessible::Description ? self_.accessibleText() : QAccessibleWidget::text(which);
    }
    // The words say it all: its parts are drawing.
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] QAccessibleInterface* child(int /*index*/) const override { return nullptr; }

private:
    const SelfDescribing& self_;
};

QAccessibleInterface* interfaceOf(const QString& /*className*/, QObject* object) {
    if (auto* row = dynamic_cast<RowView*>(object)) return new AccessibleRow(*row);
    if (auto* table = dynamic_cast<TableView*>(object)) return new QAccessibleWidget(table, QAccessible::List);
    if (auto* overlay = dynamic_cast<OverlayView*>(object)) return new QAccessibleWidget(overlay, QAccessible::Dialog);
    if (auto* picture = dynamic_cast<PictureView*>(object)) return new AccessiblePicture(picture);
    if (auto* self = dynamic_cast<SelfDescribing*>(object)) return new AccessibleSelfDescribing(qobject_cast<QWidget*>(object), *self);
    return nullptr;
}

}  // namespace

void Accessibility::install() { QAccessible::installFactory(interfaceOf); }

}  // namespace halvane::ui
