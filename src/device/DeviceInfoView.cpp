#include "device/DeviceInfoView.h"

namespace halvane::device {

DeviceInfoView::DeviceInfoView() : PageView(QStringLiteral("设备"), Ground::White) {}

}  // namespace halvane::device
