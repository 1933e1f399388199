#pragma once

#include "support/PrivateBus.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

struct sd_bus;

namespace halvane::test {

/// Has NetworkManager's name and the two properties of interest, served from a thread of its own.
class FakeNetworkManager {
public:
    enum class Manner { Answers, KeepsSilent };

    FakeNetworkManager(const PrivateBus& bus, std::uint32_t state, std::string connectionType, Manner manner = Manner::Answers);
    ~FakeNetworkManager();
    FakeNetworkManager(const FakeNetworkManager&) = delete;
    FakeNetworkManager& operator=(const FakeNetworkManager&) = delete;

    /// Changes both and says so on the bus.
    void change(std::uint32_t state, const std::string& connectionType);

    /// Whether anyone asked for the properties.
    [[nodiscard]] bool wasAsked() const { return asked_; }

private:
    void serve();

    void tellChange();

    const Manner manner_;
    std::mutex mutex_;  // guards the three below
    std::uint32_t state_;
    std::string connectionType_;
    bool changed_ = false;
    std::atomic<bool> asked_ = false;
    std::atomic<bool> ending_ = false;
    sd_bus* bus_ = nullptr;
    std::thread thread_;
};

}  // namespace halvane::test
