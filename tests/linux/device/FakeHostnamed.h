#pragma once

#include "support/PrivateBus.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <string>
#include <thread>

namespace halvane::test {

/// Answers on `bus` as systemd-hostnamed would, from a thread of its own.
class FakeHostnamed {
public:
    enum class Manner { Answers, Refuses, KeepsSilent };

    FakeHostnamed(const PrivateBus& bus, Manner manner, std::string serial, std::array<std::uint8_t, 16> uuid);
    ~FakeHostnamed();
    FakeHostnamed(const FakeHostnamed&) = delete;
    FakeHostnamed& operator=(const FakeHostnamed&) = delete;

    const Manner manner;
    const std::string serial;
    const std::array<std::uint8_t, 16> uuid;
    std::atomic<bool> askedInteractively{false};

private:
    void serve(const std::string& address);

    std::atomic<bool> ready_{false};
    std::atomic<bool> ending_{false};
    std::thread thread_;
};

}  // namespace halvane::test
