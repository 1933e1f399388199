#pragma once

#include "ui/widgets/PanelWindow.h"
#include "update/UpdateScreen.h"

#include <QElapsedTimer>
#include <QPointer>

class QLabel;

namespace halvane::ui {
class BorderedButton;
class ElidedLabel;
class FilledButton;
class ImageView;
class ProgressBar;
class TextArea;
}  // namespace halvane::ui

namespace halvane::update {

/// The window of an update: what happens, what can be done about it, and what is new. Of one size, with a place of its own for each
/// button; for the time of a double click after a new heading neither takes a press that was meant for the scene before. Screen
/// readers are told of each new heading. While it is on the screen, no main window that comes later covers it. Main thread.
class UpdateWindow final : public ui::PanelWindow, public UpdateScreen {
public:
    UpdateWindow();

    void setScene(const UpdateScene& scene) override;
    void present(Attention attention) override;
    void dismiss() override;

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void setUpUI();
    void place();
    void announce();
    /// A press of the person's, unless it came too early.
    void pressed(const std::function<void()>& action);

    QElapsedTimer sinceNews_;
    QPointer<QObject> newcomer_;  ///< a window of ours that was shown and is not active yet
    ui::ImageView* iconImgView;
    ui::ElidedLabel* headingLabel;
    QLabel* textLabel;
    ui::TextArea* notesView;
    ui::ProgressBar* progressBar;
    ui::FilledButton* primaryBtn;
    ui::BorderedButton* secondaryBtn;
};

}  // namespace halvane::update
