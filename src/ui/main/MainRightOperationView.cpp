#include "ui/main/MainRightOperationView.h"

#include "tools/NetWorkView.h"
#include "tools/SecurityCheckView.h"
#include "ui/main/AIServicesView.h"
#include "ui/main/MoreFunctionView.h"
#include "ui/main/PageBox.h"

namespace halvane::ui {

namespace {

constexpr int kMargin = 12;  // above, right of and below the card

}  // namespace

MainRightOperationView::MainRightOperationView(const device::DeviceInfoView::Collaborators& device, util::Log& log, QWidget* parent)
    : QWidget(parent), pageBox(new PageBox(this)) {
    setObjectName(QStringLiteral("rightOperationView"));
    pageBox->setObjectName(QStringLiteral("pageBox"));
    viewControllers_ = {new tools::SecurityCheckView, new device::DeviceInfoView(device), new tools::NetWorkView, new AIServicesView,
                        new MoreFunctionView(log)};
    for (PageView* page : viewControllers_) pageBox->add(page);
    showPage(0);
}

void MainRightOperationView::showPage(int index) {
    if (index < 0 || index >= static_cast<int>(viewControllers_.size())) return;
    pageBox->show(viewControllers_[static_cast<std::size_t>(index)]);
}

PageView* MainRightOperationView::shownPage() const { return pageBox->shown(); }

void MainRightOperationView::resizeEvent(QResizeEvent*) { pageBox->setGeometry(rect().adjusted(0, kMargin, -kMargin, -kMargin)); }

}  // namespace halvane::ui
