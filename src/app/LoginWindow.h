#pragma once

#include "ui/widgets/HDCLBaseWindow.h"

namespace halvane::app {

/// The small window of fixed size, without buttons to minimise and zoom.
class LoginWindow final : public ui::HDCLBaseWindow {
public:
    LoginWindow();
};

}  // namespace halvane::app
