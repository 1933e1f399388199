#pragma once

#include "tools/UninstallAuthorisation.h"
#include "ui/widgets/OverlayView.h"

#include <memory>

namespace halvane::ui {
class BorderedButton;
class ElidedLabel;
class FilledButton;
class TextField;
class TipLabel;
class ToolButton;
}  // namespace halvane::ui

namespace halvane::tools {

/// The uninstall reminder: asks for the code with which this client may be removed, and has it checked.
/// Lies over a window's content while it is shown; what was typed and said last stays. Main thread.
class UnInstallAlertView final : public ui::OverlayView {
public:
    explicit UnInstallAlertView(std::unique_ptr<UninstallAuthorisation> authorisation);

    [[nodiscard]] bool isShow() const { return isOverlaid(); }
    void showOnView(QWidget* view) { overlay(view); }
    void dissmiss() { withdraw(); }

    void applyVertifyCodeAction();
    void uninstallAction();

protected:
    [[nodiscard]] QPoint panelPlace(QSize view) const override;
    [[nodiscard]] QWidget* firstResponder() const override;
    void cancelOperation() override { dissmiss(); }

private:
    void setUpUI();
    void connectControls();
    void controlTextDidChange();
    void answered(const UninstallAuthorisation::Reply& reply);

    // Children of the panel, set once in the constructor.
    ui::TextField* vertifyTF;
    ui::TipLabel* tipLabel;
    ui::ElidedLabel* titleLabel;
    ui::ToolButton* closeBtn;
    ui::BorderedButton* applyVertifyCodeBtn;
    ui::BorderedButton* cancelBtn;
    ui::FilledButton* uninstallBtn;

    std::unique_ptr<UninstallAuthorisation> authorisation_;  // last: it speaks to the controls
};

}  // namespace halvane::tools
