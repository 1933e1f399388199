#pragma once

#include <QProgressBar>
#include <QVariantAnimation>
#include <optional>

namespace halvane::ui {

/// A fine line that fills from the left, or on which a piece wanders while nobody knows how far it is. Where the desktop wants
/// nothing to move, the piece stands still.
class ProgressBar final : public QProgressBar {
public:
    ProgressBar(const QString& name, QWidget* parent);

    /// 0 to 1; absent while nobody knows.
    void setFraction(std::optional<double> fraction);

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void wander();

    QVariantAnimation motion_;
    std::optional<double> fraction_;
};

}  // namespace halvane::ui
