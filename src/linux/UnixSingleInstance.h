#pragma once

#include "linux/InstanceLock.h"
#include "linux/LocalSocket.h"
#include "platform/MainLoop.h"
#include "platform/SingleInstance.h"
#include "util/Log.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <thread>

namespace halvane::linux {

/// One client per user and session, by a lock file and a socket in the user's temporary directory.
/// The first listens on a thread of its own, which also answers while the main thread is busy; what
/// it takes over reaches `onLaterStart` on the main loop. Where the directory cannot be used every
/// start is a first one, and the log says so. Main thread; `mainLoop` and `log` outlive this object.
/// Destroying it, which the callback may do, ends the listening: nothing is handed over any more.
class UnixSingleInstance final : public platform::SingleInstance {
public:
    /// How long a running client may take to answer.
    static constexpr std::chrono::milliseconds kPatience{2000};

    UnixSingleInstance(std::filesystem::path directory, platform::MainLoop& mainLoop, util::Log& log,
                       std::chrono::milliseconds patience = kPatience);
    ~UnixSingleInstance() override;
    UnixSingleInstance(const UnixSingleInstance&) = delete;
    UnixSingleInstance& operator=(const UnixSingleInstance&) = delete;

    Role enter(const std::vector<std::string>& arguments, Handover onLaterStart) override;

private:
    class Listener;

    Role settle(const util::Bytes& message);
    [[nodiscard]] bool handOver(const util::Bytes& message, LocalSocket::Deadline deadline) const;
    void listen(Handover onLaterStart);

    const std::filesystem::path directory_;
    platform::MainLoop& mainLoop_;
    util::Log& log_;
    const std::chrono::milliseconds patience_;
    InstanceLock lock_;
    std::unique_ptr<Listener> listener_;
};

}  // namespace halvane::linux
