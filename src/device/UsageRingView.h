#pragma once

#include "ui/widgets/SelfDescribing.h"

#include <QWidget>

class QLabel;
class QPieSeries;

namespace halvane::ui {
class ElidedLabel;
}

namespace halvane::device {

class BareChartView;

/// A card with a ring: how much of something is used, with its size in the middle. Main thread.
class UsageRingView final : public QWidget, public ui::SelfDescribing {
public:
    /// Until the first figures the middle says "xx.xxGB \nxx.xxGB".
    UsageRingView(const QString& title, QWidget* parent);

    void setCenterText(const QString& text);
    /// The parts, in the same measure. When both are 0 the ring is empty.
    void setParts(int used, int free);

    [[nodiscard]] QString centerText() const;
    [[nodiscard]] int usedPart() const;
    [[nodiscard]] int freePart() const;

    [[nodiscard]] QAccessible::Role accessibleRole() const override { return QAccessible::Chart; }
    [[nodiscard]] QString accessibleText() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void setUpRing();

    ui::ElidedLabel* titleLabel;
    BareChartView* pieChartView;
    QPieSeries* parts_;
    QLabel* centerLabel;
};

}  // namespace halvane::device
