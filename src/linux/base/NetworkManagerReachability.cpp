#include "linux/base/NetworkManagerReachability.h"

#include "linux/base/Descriptor.h"
#include "linux/base/NetworkManagerClient.h"
#include "linux/device/DefaultRoutes.h"

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <algorithm>
#include <cstdint>
#include <mutex>
#include <utility>

namespace halvane::linux {

namespace {

using platform::ReachabilityStatus;
using Clock = std::chrono::steady_clock;

/// Readable whenever links or routes change.
Descriptor openRouteChanges() {
    Descriptor socket(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE));
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_ROUTE | RTMGRP_IPV6_ROUTE;
    if (socket && ::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) socket.close();
    return socket;
}

/// What arrived only says that something changed; an overrun (ENOBUFS) says it too.
void drain(const Descriptor& descriptor) {
    char bytes[8192];
    for (int i = 0; i < 1000 && ::read(descriptor.get(), bytes, sizeof bytes) > 0; ++i) {
    }
}

int millisecondsUntil(std::optional<Clock::time_point> time) {
    if (!time) return -1;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*time - Clock::now());
    return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 60'000));
}

std::optional<Clock::time_point> earlier(std::optional<Clock::time_point> one, std::optional<Clock::time_point> other) {
    return one && other ? std::min(one, other) : (one ? one : other);
}

}  // namespace

class NetworkManagerReachability::Watch : public std::enable_shared_from_this<Watch> {
public:
    Watch(platform::DispatchQueue& queue, Sources sources) : queue_(queue), sources_(std::move(sources)) {}

    void start() {
        const std::lock_guard lock(mutex_);
        if (!thread_.joinable()) thread_ = std::thread([this] { run(); });
    }

    void stop() {
        const std::uint64_t one = 1;
        [[maybe_unused]] const auto written = ::write(stop_.get(), &one, sizeof one);
        std::thread thread;
        {
            const std::lock_guard lock(mutex_);
            thread.swap(thread_);
            handler_.reset();
        }
        if (thread.joinable()) thread.join();
    }

    ReachabilityStatus status() const {
        const std::lock_guard lock(mutex_);
        return status_;
    }

    void setHandler(Handler handler) {
        auto next = handler ? std::make_shared<const Handler>(std::move(handler)) : nullptr;
        const std::lock_guard lock(mutex_);
        handler_.swap(next);
        if (status_ != ReachabilityStatus::Unknown) tell();
    }

private:
    void run() {
        NetworkManagerClient manager(sources_.busAddress);
        const Descriptor routeChanges = openRouteChanges();
        const auto patienceEnds = Clock::now() + sources_.patience;
        for (;;) {
            manager.process();
            auto wakeUp = manager.due();
            const auto knowledge = manager.knowledge();
            if (knowledge == NetworkManagerClient::Knowledge::Known) {
                publish(manager.status());
            } else if (knowledge == NetworkManagerClient::Knowledge::Absent || Clock::now() >= patienceEnds) {
                publish(byRoutes());
            } else {
                wakeUp = earlier(wakeUp, patienceEnds);
            }
            pollfd waits[] = {{stop_.get(), POLLIN, 0}, {manager.descriptor(), manager.events(), 0}, {routeChanges.get(), POLLIN, 0}};
            ::poll(waits, std::size(waits), millisecondsUntil(wakeUp));
            if (waits[0].revents != 0) return;
            if (waits[2].revents != 0) drain(routeChanges);
        }
    }

    [[nodiscard]] ReachabilityStatus byRoutes() const {
        return defaultRoutes(sources_.files).empty() ? ReachabilityStatus::NotReachable : ReachabilityStatus::Wifi;
    }

    void publish(ReachabilityStatus status) {
        const std::lock_guard lock(mutex_);
        if (std::exchange(status_, status) != status) tell();
    }

    /// Under the lock, so that the queue gets changes in their order.
    void tell() {
        if (!handler_) return;
        queue_.async([weak = weak_from_this(), handler = handler_, status = status_] {
            const auto self = weak.lock();
            if (self && self->isCurrent(handler)) (*handler)(status);
        });
    }

    bool isCurrent(const std::shared_ptr<const Handler>& handler) const {
        const std::lock_guard lock(mutex_);
        return handler == handler_;
    }

    platform::DispatchQueue& queue_;
    const Sources sources_;
    const Descriptor stop_{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
    mutable std::mutex mutex_;  // guards all below
    std::thread thread_;
    ReachabilityStatus status_ = ReachabilityStatus::Unknown;
    std::shared_ptr<const Handler> handler_;
};

NetworkManagerReachability::NetworkManagerReachability(platform::DispatchQueue& queue, Sources sources)
    : watch_(std::make_shared<Watch>(queue, std::move(sources))) {}

NetworkManagerReachability::~NetworkManagerReachability() { watch_->stop(); }

void NetworkManagerReachability::startMonitoring() { watch_->start(); }

ReachabilityStatus NetworkManagerReachability::status() const { return watch_->status(); }

void NetworkManagerReachability::setHandler(Handler handler) { watch_->setHandler(std::move(handler)); }

}  // namespace halvane::linux
