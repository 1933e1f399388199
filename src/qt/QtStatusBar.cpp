#include "qt/QtStatusBar.h"

#include "qt/QtStatusItem.h"

namespace halvane::qt {

std::unique_ptr<platform::StatusBar::Item> QtStatusBar::statusItemWithLength(int /*length*/) {
    return std::make_unique<QtStatusItem>(loadImage_);
}

}  // namespace halvane::qt
