#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace halvane::linux {

/// Asks systemd-hostnamed, which may read what the firmware tells only to root. Each call connects,
/// asks and hangs up; it blocks for `deadline` at the most, connecting included, whatever the other
/// side does. No bus, no service, a refusal (the stock policy refuses users without administrator
/// rights) and a late answer are all the same: absent, without a word and without asking the person. Any thread.
class HostnamedClient {
public:
    /// `busAddress`: the bus to use; empty for the system's.
    explicit HostnamedClient(std::string busAddress = {}, std::chrono::milliseconds deadline = std::chrono::seconds(1))
        : busAddress_(std::move(busAddress)), deadline_(deadline) {}

    [[nodiscard]] std::optional<std::string> hardwareSerial() const;
    /// Lower case, with dashes.
    [[nodiscard]] std::optional<std::string> productUuid() const;

private:
    const std::string busAddress_;
    const std::chrono::milliseconds deadline_;
};

}  // namespace halvane::linux
