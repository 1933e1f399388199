#pragma once

#include <QWidget>

namespace halvane::ui {

/// Base of the pages and of the panels that cover them: white, with the round corners of the card that
/// they lie on.
class PageView : public QWidget {
public:
    enum class Ground {
        White,
        Clear  ///< what lies beneath shows through
    };

    /// `name`: what a screen reader calls it.
    PageView(const QString& name, Ground ground, QWidget* parent = nullptr);

    [[nodiscard]] Ground ground() const { return ground_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Ground ground_;
};

}  // namespace halvane::ui
