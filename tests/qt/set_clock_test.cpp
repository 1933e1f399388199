#include "qt/QtMainLoop.h"

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>
#include <QDateTime>
#include <QTest>
#include <atomic>
#include <chrono>
#include <ctime>

using namespace std::chrono_literals;

namespace {

std::atomic<time_t> daysSetBack{0};

}  // namespace

// These stand before the C library's, for this program and the libraries in it: the time of day as somebody set it.
extern "C" int clock_gettime(clockid_t clock, timespec* time) {
    const auto result = static_cast<int>(::syscall(SYS_clock_gettime, clock, time));
    if (clock == CLOCK_REALTIME) time->tv_sec -= daysSetBack * 86400;
    return result;
}

extern "C" int gettimeofday(timeval* time, void* zone) noexcept {
    const auto result = static_cast<int>(::syscall(SYS_gettimeofday, time, zone));
    time->tv_sec -= daysSetBack * 86400;
    return result;
}

namespace halvane::test {
namespace {

TEST(SetClockTest, turns_keep_their_pace_when_somebody_sets_the_clock) {
    qt::QtMainLoop loop;
    int turns = 0;
    int late = 0;
    const auto timer = loop.every(20ms, [&turns] { ++turns; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return turns >= 2; }, 5000));
    const auto before = QDateTime::currentDateTime();
    for (const int days : {1, 0, -400, 0}) {
        daysSetBack = days;
        loop.after(10ms, [&late] { ++late; });
        const int seen = turns;
        EXPECT_TRUE(QTest::qWaitFor([&] { return turns >= seen + 2 && late > 0; }, 5000)) << days << " days back";
        late = 0;
        EXPECT_EQ(QDateTime::currentDateTime() < before, days == 1) << "this test sets the clock";
    }
}

}  // namespace
}  // namespace halvane::test
