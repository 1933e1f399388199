#include "qt/QtMainLoop.h"

#include <QDeadlineTimer>
#include <QMetaObject>
#include <QTimer>
#include <algorithm>
#include <utility>

namespace halvane::qt {

class QtMainLoop::RepeatingTimer final : public platform::MainLoop::Timer {
public:
    RepeatingTimer(QObject& receiver, std::chrono::milliseconds interval, Block block) {
        timer_.setTimerType(Qt::CoarseTimer);
        QObject::connect(&timer_, &QTimer::timeout, &receiver, std::move(block));
        timer_.start(interval);
    }
    void stop() override { timer_.stop(); }

private:
    QTimer timer_;
};

void QtMainLoop::async(Block block) { QMetaObject::invokeMethod(&receiver_, std::move(block), Qt::QueuedConnection); }

void QtMainLoop::after(std::chrono::milliseconds delay, Block block) {
    // Timers belong to a thread, so the main thread makes them; what it was late by counts as waited.
    const QDeadlineTimer deadline(std::max(delay, std::chrono::milliseconds(0)), Qt::PreciseTimer);
    async([this, deadline, block = std::move(block)]() mutable {
        auto* timer = new QTimer(&receiver_);
        timer->setSingleShot(true);
        timer->setTimerType(Qt::PreciseTimer);
        QObject::connect(timer, &QTimer::timeout, &receiver_, [timer, block = std::move(block)] {
            timer->deleteLater();
            block();
        });
        timer->start(static_cast<int>(deadline.remainingTime()));
    });
}

std::unique_ptr<platform::MainLoop::Timer> QtMainLoop::every(std::chrono::milliseconds interval, Block block) {
    return std::make_unique<RepeatingTimer>(receiver_, interval, std::move(block));
}

}  // namespace halvane::qt
