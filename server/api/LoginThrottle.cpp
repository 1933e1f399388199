#include "server/api/LoginThrottle.h"

namespace halvane::server {

namespace {

/// Invented names must not fill the memory.
constexpr std::size_t kMostAccounts = 10'000;

}  // namespace

void LoginThrottle::forgetOld(std::deque<Time>& failures) const {
    const Time now = clock_();
    while (!failures.empty() && failures.front() + kWindow <= now) failures.pop_front();
}

bool LoginThrottle::isClosed(const std::string& account) {
    const std::lock_guard lock(mutex_);
    const auto known = failures_.find(account);
    if (known == failures_.end()) return false;
    forgetOld(known->second);
    return known->second.size() >= kFailures;
}

void LoginThrottle::failed(const std::string& account) {
    const std::lock_guard lock(mutex_);
    if (failures_.size() >= kMostAccounts) {
        for (auto& [name, times] : failures_) forgetOld(times);
        std::erase_if(failures_, [](const auto& entry) { return entry.second.empty(); });
        if (failures_.size() >= kMostAccounts) failures_.clear();
    }
    auto& failures = failures_[account];
    failures.push_back(clock_());
    if (failures.size() > kFailures) failures.pop_front();
}

void LoginThrottle::succeeded(const std::string& account) {
    const std::lock_guard lock(mutex_);
    failures_.erase(account);
}

}  // namespace halvane::server
