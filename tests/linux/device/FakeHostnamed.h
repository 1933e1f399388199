#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <filesystem>
#include <string>
#include <thread>

#include <sys/types.h>

namespace halvane::test {

/// A bus daemon of the test's own, on a socket in a directory of its own, with nobody on it.
class PrivateBus {
public:
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    [[nodiscard]] const std::string& address() const { return address_; }

private:
    std::filesystem::path directory_;
    std::string address_;
    pid_t daemon_ = -1;
};

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
