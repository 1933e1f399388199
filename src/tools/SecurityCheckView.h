#pragma once

#include "ui/widgets/PageView.h"

#include <array>
#include <string>

namespace halvane::ui {
class BorderedButton;
class ElidedLabel;
class FilledButton;
class ImageView;
}  // namespace halvane::ui

namespace halvane::tools {

/// How this computer stands against the company's requirements. Nothing is checked yet: every requirement
/// reads as failed, and repairing does nothing. Main thread.
class SecurityCheckView final : public ui::PageView {
public:
    SecurityCheckView();

    /// How many requirements fail; always "3", whatever was set.
    [[nodiscard]] std::string fixCount() const { return "3"; }
    void setFixCount(const std::string& count) { fixCount_ = count; }
    void updateTitle();

    void softStateAction() {}
    void netStateAction() {}
    void persionStateAction() {}
    void fixAction() {}

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Row {
        ui::ImageView* icon;
        ui::ElidedLabel* title;
        ui::ElidedLabel* subTitle;
        ui::ImageView* state;
        ui::BorderedButton* button;
    };

    void setUpUI();
    [[nodiscard]] Row makeRow(const char* name, const char* iconName, const char* title, const char* subTitle,
                              void (SecurityCheckView::*action)());
    [[nodiscard]] ui::ElidedLabel* creatFuncTitle(const QString& text);
    [[nodiscard]] ui::ElidedLabel* creatFuncSubTitle(const QString& text);
    [[nodiscard]] QRect rowRect(std::size_t index) const;

    std::string fixCount_;
    ui::ElidedLabel* titleLabel;
    std::array<Row, 3> rows_{};
    ui::FilledButton* fixBtn;
};

}  // namespace halvane::tools
