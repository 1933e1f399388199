#pragma once

#include <QWidget>
#include <functional>

namespace halvane::bench {

/// Goes through the pages of a window, twenty times round, and prints one line of figures: how long the first
/// and the later switches took, in microseconds with the painting, and the resident memory afterwards in KiB.
class PageTour {
public:
    /// `select` brings up a page.
    static void run(QWidget& window, int pages, const std::function<void(int page)>& select);
};

}  // namespace halvane::bench
