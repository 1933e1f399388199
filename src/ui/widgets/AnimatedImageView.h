#pragma once

#include "ui/widgets/PictureView.h"

#include <QMovie>

namespace halvane::ui {

/// A named animation in the size of the view, at rest on its first frame. Runs only while it can be seen,
/// and not at all where the desktop wants nothing to move; it counts as animating all the same. The owner
/// names it for screen readers.
class AnimatedImageView final : public PictureView {
public:
    /// `fileName`: with its suffix.
    AnimatedImageView(const QString& fileName, QWidget* parent);

    void startAnimating();
    void stopAnimating();
    [[nodiscard]] bool isAnimating() const { return animating_; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void run();

    QMovie movie_;
    bool animating_ = false;
};

}  // namespace halvane::ui
