#include "PageTour.h"

#include <unistd.h>
#include <QCoreApplication>
#include <QWindow>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <vector>

namespace halvane::bench {

namespace {

constexpr int kRounds = 20;

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

long residentKibibytes() {
    long total = 0;
    long resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

}  // namespace

void PageTour::run(QWidget& window, int pages, const std::function<void(int page)>& select) {
    std::vector<double> first;
    std::vector<double> later;
    // Nothing is painted before the desktop has shown the window.
    for (int turn = 0; turn < 1000 && !window.windowHandle()->isExposed(); ++turn)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    window.repaint();
    for (int round = 0; round < kRounds; ++round) {
        // Page 0 is on the screen at the start of the first round.
        for (int page = round == 0 ? 1 : 0; page < pages; ++page) {
            const auto start = std::chrono::steady_clock::now();
            select(page);
            QCoreApplication::sendPostedEvents();
            window.repaint();
            const std::chrono::duration<double, std::micro> took = std::chrono::steady_clock::now() - start;
            (round == 0 ? first : later).push_back(took.count());
        }
    }
    std::printf("%f %f %ld\n", median(first), median(later), residentKibibytes());
}

}  // namespace halvane::bench
