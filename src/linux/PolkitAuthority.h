#pragma once

#include <chrono>
#include <string>

namespace halvane::linux {

/// polkit's word on whether this process might get an action, without asking the person. Each call connects, asks and
/// hangs up, and blocks for `deadline` at the most. Any thread.
class PolkitAuthority {
public:
    enum class Answer {
        Possible,  ///< allowed, or to be allowed by the person
        Refused,   ///< by the system's policy, whatever the person says
        UnknownAction,
        Unavailable  ///< no bus, no polkit, or no answer in time
    };

    /// `busAddress`: the bus to use; empty for the system's.
    explicit PolkitAuthority(std::string busAddress = {}, std::chrono::milliseconds deadline = std::chrono::seconds(5))
        : busAddress_(std::move(busAddress)), deadline_(deadline) {}

    [[nodiscard]] Answer check(const std::string& action) const;
    /// Whether there is a polkit at all.
    [[nodiscard]] bool isThere() const { return check(kExecute) != Answer::Unavailable; }

    /// The action of pkexec, for programs that have none of their own.
    static constexpr const char* kExecute = "org.freedesktop.policykit.exec";

private:
    const std::string busAddress_;
    const std::chrono::milliseconds deadline_;
};

}  // namespace halvane::linux
