#pragma once

#include "update/UpdateScene.h"

#include <functional>

namespace halvane::update {

/// What the interactive update needs of its window. Main thread. The callbacks come inside the person's own actions and may call
/// back; they are set before the first `present`.
class UpdateScreen {
public:
    enum class Attention {
        Keyboard,  ///< the person asked for it: to the front, with the keyboard
        Quiet      ///< to the front, the keyboard stays where it is
    };

    virtual ~UpdateScreen() = default;

    virtual void setScene(const UpdateScene& scene) = 0;
    /// Puts the window on the screen, or to the front.
    virtual void present(Attention attention) = 0;
    /// Takes it from the screen; calls nothing.
    virtual void dismiss() = 0;

    std::function<void()> onPrimary;
    std::function<void()> onSecondary;
    /// The person closed the window, by Escape or otherwise.
    std::function<void()> onClosed;
};

}  // namespace halvane::update
