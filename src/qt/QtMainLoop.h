#pragma once

#include "platform/MainLoop.h"

#include <QSocketNotifier>
#include <QTimer>
#include <chrono>
#include <map>
#include <memory>

namespace halvane::qt {

/// The main loop on Qt's event loop. Made and destroyed on the thread of the application object, also by
/// one of its own blocks. Blocks run only while that loop runs; those handed in before wait for it, in
/// order. Destroying drops what waits and silences its timers.
///
/// `after` keeps to the millisecond, because short delays must not overtake one another. `every` may be
/// early or late by a twentieth of its interval, so that the system can wake once for several programs.
///
/// Other threads never call into Qt: they put their block into a queue and wake the loop through a
/// descriptor, once for as many blocks as come before it is awake.
class QtMainLoop final : public platform::MainLoop {
public:
    QtMainLoop();
    ~QtMainLoop() override;
    QtMainLoop(const QtMainLoop&) = delete;
    QtMainLoop& operator=(const QtMainLoop&) = delete;

    void async(Block block) override;
    void after(std::chrono::milliseconds delay, Block block) override;
    [[nodiscard]] std::unique_ptr<Timer> every(std::chrono::milliseconds interval, Block block) override;

private:
    class Queue;
    class RepeatingTimer;
    using Clock = std::chrono::steady_clock;

    void armTimer();
    void handOverDue();

    const std::shared_ptr<Queue> queue_;  ///< outlives this while a block of it runs
    QSocketNotifier notifier_;
    std::multimap<Clock::time_point, Block> delayed_;  ///< main thread
    QTimer timer_;                                     ///< due with the first of them
};

}  // namespace halvane::qt
