#pragma once

#include "platform/MainLoop.h"

#include <QObject>

namespace halvane::qt {

/// The main loop on Qt's event loop. Made and destroyed on the thread of the application object. Blocks
/// run only while that loop runs; those handed in before wait for it, in order. Destroying drops what
/// waits and silences its timers.
///
/// `after` keeps to the millisecond, because short delays must not overtake one another. `every` may be
/// late by a twentieth of its interval, so that the system can wake once for several programs.
class QtMainLoop final : public platform::MainLoop {
public:
    void async(Block block) override;
    void after(std::chrono::milliseconds delay, Block block) override;
    [[nodiscard]] std::unique_ptr<Timer> every(std::chrono::milliseconds interval, Block block) override;

private:
    class RepeatingTimer;

    QObject receiver_;  ///< Qt drops the events of a receiver that is gone
};

}  // namespace halvane::qt
