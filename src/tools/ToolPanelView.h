#pragma once

#include "ui/widgets/PageView.h"

#include <functional>

namespace halvane::ui {
class ElidedLabel;
class ToolButton;
}  // namespace halvane::ui

namespace halvane::tools {

/// Base of the tools' panels, which cover their page while they are shown: a bar with the way back and a
/// title. Escape goes back too. Main thread.
class ToolPanelView : public ui::PageView {
public:
    /// `name`: what a screen reader calls the panel.
    ToolPanelView(const QString& name, QWidget* parent);

    /// The person wants back; may be empty.
    std::function<void()> backBlock;

    void backAction();

    /// The keyboard to the first control; whoever came by keyboard sees where it is.
    void takeKeyboard(Qt::FocusReason reason);

protected:
    static constexpr int barHeight = 64;

    /// Shows `title` in the middle of the bar, bold.
    ui::ElidedLabel* addBarTitle(const QString& title);
    /// A button at the bar's right end.
    ui::ToolButton* addBarButton(const QString& imageName, const QString& title);

    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    /// Called after each change of size, with the bar in its place.
    virtual void place() = 0;

private:
    ui::ToolButton* backBtn;
    ui::ElidedLabel* barTitle_ = nullptr;
    ui::ToolButton* barButton_ = nullptr;
};

}  // namespace halvane::tools
