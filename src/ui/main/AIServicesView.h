#pragma once

#include "ui/widgets/PageView.h"

namespace halvane::ui {

/// The page of services: there are none yet.
class AIServicesView final : public PageView {
public:
    AIServicesView();

private:
    void setUpUI() {}
};

}  // namespace halvane::ui
