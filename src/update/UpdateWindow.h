#pragma once

#include "ui/widgets/PanelWindow.h"
#include "update/UpdateScreen.h"

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

/// The window of an update: what happens, what can be done about it, and what is new. As high as its scene needs. Screen readers
/// are told of each new heading. Main thread.
class UpdateWindow final : public ui::PanelWindow, public UpdateScreen {
public:
    UpdateWindow();

    void setScene(const UpdateScene& scene) override;
    void present(Attention attention) override;
    void dismiss() override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void setUpUI();
    void place(const UpdateScene& scene);
    void announce();

    ui::ImageView* iconImgView;
    ui::ElidedLabel* headingLabel;
    QLabel* textLabel;
    ui::TextArea* notesView;
    ui::ProgressBar* progressBar;
    ui::FilledButton* primaryBtn;
    ui::BorderedButton* secondaryBtn;
};

}  // namespace halvane::update
