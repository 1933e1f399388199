#pragma once

#include <QSocketNotifier>
#include <functional>

namespace halvane::qt {

/// Turns SIGTERM and SIGINT into a call on the main thread: inside a handler next to nothing is
/// allowed, so it writes into a pipe that the event loop reads. A signal that comes before the loop
/// runs waits in the pipe. One instance a process, made and destroyed on the main thread; destroying
/// gives the signals their default meaning back. `onTerminate` may be called once for each signal.
class QtSignals {
public:
    explicit QtSignals(std::function<void()> onTerminate);
    ~QtSignals();
    QtSignals(const QtSignals&) = delete;
    QtSignals& operator=(const QtSignals&) = delete;

private:
    struct Pipe {
        Pipe();
        ~Pipe();
        int ends[2] = {-1, -1};
    };

    Pipe pipe_;
    QSocketNotifier notifier_;
};

}  // namespace halvane::qt
