#include "ui/main/AIServicesView.h"

namespace halvane::ui {

AIServicesView::AIServicesView() : PageView(QStringLiteral("服务"), Ground::Clear) { setUpUI(); }

}  // namespace halvane::ui
