#pragma once

#include "ui/widgets/PageView.h"

namespace halvane::ui {
class ElidedLabel;
class FilledButton;
class ImageView;
}  // namespace halvane::ui

namespace halvane::tools {

/// The page of the company's VPN. No connection is made yet. Main thread.
class NetWorkView final : public ui::PageView {
public:
    NetWorkView();

    void connectAction() {}

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void setUpUI();
    [[nodiscard]] QRect statusField() const;
    [[nodiscard]] int columnTop() const;

    ui::ImageView* headerIconView;
    ui::ImageView* centerIconView;
    ui::ImageView* bottomIconView;
    ui::ElidedLabel* connectStateLabel;
    ui::FilledButton* connectBtn;
};

}  // namespace halvane::tools
