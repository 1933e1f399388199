#include "ui/widgets/WindowDelegate.h"

#include "ui/widgets/HDCLUICenter.h"

namespace halvane::ui {

bool WindowDelegate::windowShouldZoom(HDCLBaseWindow&, QSize proposed) {
    return proposed.width() >= HDCLUICenter::mainContentSize.width() && proposed.height() >= HDCLUICenter::mainContentSize.height();
}

}  // namespace halvane::ui
