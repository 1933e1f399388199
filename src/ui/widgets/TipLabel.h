#pragma once

#include "ui/widgets/ElidedLabel.h"

#include <QList>

namespace halvane::ui {

/// One line that says how the last action went. Screen readers are told of it, by way of the controls that
/// it belongs to.
class TipLabel final : public ElidedLabel {
public:
    enum class Mood { Good, Bad };

    explicit TipLabel(QWidget* parent);

    /// Whose description it becomes. They outlive it, or are its siblings.
    void setControls(QList<QWidget*> controls) { controls_ = std::move(controls); }
    void setTip(const QString& text, Mood mood = Mood::Bad);

private:
    QList<QWidget*> controls_;
};

}  // namespace halvane::ui
