#include "linux/UnixSingleInstance.h"

#include "linux/InstanceMessage.h"
#include "linux/PosixFileStore.h"
#include "linux/base/Descriptor.h"

#include <poll.h>
#include <sys/eventfd.h>

#include <cstdint>
#include <utility>

namespace halvane::linux {

namespace {

using Clock = std::chrono::steady_clock;

/// A caller that says nothing keeps the next one waiting no longer than this.
constexpr std::chrono::milliseconds kCallerTime{500};

constexpr const char* kSocketName = "instance.socket";

}  // namespace

/// Takes over the arguments of later starts.
class UnixSingleInstance::Listener {
public:
    Listener(LocalSocket socket, platform::MainLoop& mainLoop, Handover onLaterStart)
        : socket_(std::move(socket)),
          mainLoop_(mainLoop),
          onLaterStart_(std::make_shared<Handover>(std::move(onLaterStart))),
          thread_([this] { run(); }) {}

    ~Listener() {
        const std::uint64_t one = 1;
        [[maybe_unused]] const auto written = ::write(stop_.get(), &one, sizeof one);
        thread_.join();
    }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

private:
    void run() {
        for (;;) {
            pollfd waits[] = {{stop_.get(), POLLIN, 0}, {socket_.descriptor(), POLLIN, 0}};
            ::poll(waits, std::size(waits), -1);
            if (waits[0].revents != 0) return;
            if (const auto caller = socket_.accept()) serve(caller);
        }
    }

    void serve(const LocalSocket& caller) {
        const auto deadline = Clock::now() + kCallerTime;
        const auto header = caller.receive(InstanceMessage::kHeaderSize, deadline);
        const auto size = header ? InstanceMessage::bodySize(*header) : std::nullopt;
        const auto body = size ? caller.receive(*size, deadline) : std::nullopt;
        auto arguments = body ? InstanceMessage::decode(*body) : std::nullopt;
        if (!arguments) return;
        mainLoop_.async([weak = std::weak_ptr(onLaterStart_), arguments = std::move(*arguments)] {
            const auto handover = weak.lock();
            if (handover && *handover) (*handover)(arguments);
        });
        // Afterwards: a start that ended content was heard.
        caller.send({&InstanceMessage::kTaken, 1}, deadline);
    }

    const LocalSocket socket_;
    platform::MainLoop& mainLoop_;
    const std::shared_ptr<Handover> onLaterStart_;
    const Descriptor stop_{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
    std::thread thread_;  // last: it uses all the others
};

UnixSingleInstance::UnixSingleInstance(std::filesystem::path directory, platform::MainLoop& mainLoop, util::Log& log,
                                       std::chrono::milliseconds patience)
    : directory_(std::move(directory)), mainLoop_(mainLoop), log_(log), patience_(patience), lock_(directory_) {}

UnixSingleInstance::~UnixSingleInstance() = default;

UnixSingleInstance::Role UnixSingleInstance::enter(const std::vector<std::string>& arguments, Handover onLaterStart) {
    if (const auto made = PosixFileStore().makeDirectory(directory_); !made) log_.write("single instance: " + made.error().description);
    auto message = InstanceMessage::encode(arguments);
    if (!message) {
        log_.write("single instance: the arguments are too long to be handed over");
        message = InstanceMessage::encode({});
    }
    const auto role = settle(*message);
    if (role == Role::First) listen(std::move(onLaterStart));
    return role;
}

UnixSingleInstance::Role UnixSingleInstance::settle(const util::Bytes& message) {
    // Whoever loses the race to replace a dead client finds a living one in the next round.
    for (int round = 0; round < 3; ++round) {
        const auto deadline = Clock::now() + patience_;
        do {
            const auto outcome = lock_.tryTake();
            if (outcome == InstanceLock::Outcome::Taken) return Role::First;
            if (outcome == InstanceLock::Outcome::Impossible) {
                log_.write("single instance: cannot lock " + directory_.string() + ", other starts are not noticed");
                return Role::First;
            }
            if (handOver(message, deadline)) return Role::Later;
            // The other one is about to listen, or about to end.
            ::poll(nullptr, 0, 5);
        } while (Clock::now() < deadline);
        if (lock_.replaceOther()) {
            log_.write("single instance: the running client does not answer, this one takes its place");
            return Role::First;
        }
    }
    log_.write("single instance: the running client neither answers nor can be replaced, other starts are not noticed");
    return Role::First;
}

bool UnixSingleInstance::handOver(const util::Bytes& message, LocalSocket::Deadline deadline) const {
    const auto running = LocalSocket::connectTo(directory_ / kSocketName);
    if (!running || !running.send(message, deadline)) return false;
    const auto answer = running.receive(1, deadline);
    return answer && answer->front() == InstanceMessage::kTaken;
}

void UnixSingleInstance::listen(Handover onLaterStart) {
    if (!lock_.isHeld()) return;
    auto socket = LocalSocket::listenAt(directory_ / kSocketName);
    if (socket) {
        listener_ = std::make_unique<Listener>(std::move(socket), mainLoop_, std::move(onLaterStart));
    } else {
        log_.write("single instance: cannot listen in " + directory_.string() + ", later starts find nobody");
    }
}

}  // namespace halvane::linux
