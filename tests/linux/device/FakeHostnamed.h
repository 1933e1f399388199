#pragma once

#include "support/BusService.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <string>

namespace halvane::test {

/// Answers on `bus` as systemd-hostnamed would.
class FakeHostnamed {
public:
    enum class Manner { Answers, Refuses, KeepsSilent };

    FakeHostnamed(const PrivateBus& bus, Manner manner, std::string serial, std::array<std::uint8_t, 16> uuid);

    const Manner manner;
    const std::string serial;
    const std::array<std::uint8_t, 16> uuid;
    std::atomic<bool> askedInteractively{false};

private:
    BusService service_;
};

}  // namespace halvane::test
