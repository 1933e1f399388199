#pragma once

#include "tools/ToolPanelView.h"

namespace halvane::ui {
class FilledButton;
class TextField;
}  // namespace halvane::ui

namespace halvane::tools {

/// Remote assistance: the codes of this computer on the left, those of a partner on the right. No
/// connection is made yet, and the codes are placeholders.
class RemoteAssistanceView final : public ToolPanelView {
public:
    explicit RemoteAssistanceView(QWidget* parent);

    /// The person wants a connection; may be empty.
    std::function<void()> remoteBlock;

    void remoteAction();

protected:
    void place() override;
    void paintEvent(QPaintEvent* event) override;

private:
    void setUpUI();
    [[nodiscard]] QRect localHalf() const;
    [[nodiscard]] QRect remoteHalf() const;

    ui::ElidedLabel* titleLabel;
    ui::ElidedLabel* localSection;
    ui::ElidedLabel* localCodeCaption;
    ui::ElidedLabel* localCodeLabel;
    ui::ElidedLabel* localPWCaption;
    ui::ElidedLabel* localPWLabel;
    ui::ElidedLabel* remoteSection;
    ui::ElidedLabel* romateCodeCaption;
    ui::TextField* romateCodeTF;
    ui::ElidedLabel* remotePWCaption;
    ui::TextField* remotePWTF;
    ui::FilledButton* remoteBtn;
};

}  // namespace halvane::tools
