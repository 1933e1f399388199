#pragma once

#include "ui/widgets/PageView.h"

namespace halvane::device {

/// The page of this computer.
class DeviceInfoView final : public ui::PageView {
public:
    DeviceInfoView();
};

}  // namespace halvane::device
