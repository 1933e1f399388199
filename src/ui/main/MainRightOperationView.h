#pragma once

#include "device/DeviceInfoView.h"

#include <QWidget>
#include <vector>

namespace halvane::util {
class Log;
}

namespace halvane::ui {

class PageBox;
class PageView;

/// Right of the left menu: one page for each of its entries, made once and kept, one of them shown. Main
/// thread; what it is given outlives it.
class MainRightOperationView final : public QWidget {
public:
    MainRightOperationView(const device::DeviceInfoView::Collaborators& device, util::Log& log, QWidget* parent);

    /// In the order of the menu.
    [[nodiscard]] const std::vector<PageView*>& viewControllers() const { return viewControllers_; }
    void showPage(int index);
    [[nodiscard]] PageView* shownPage() const;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    PageBox* pageBox;
    std::vector<PageView*> viewControllers_;
};

}  // namespace halvane::ui
