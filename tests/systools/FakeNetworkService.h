#pragma once

#include "systools/Tool.h"
#include "systools/network/NetworkService.h"

#include <algorithm>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace halvane::test {

/// The computer's network, as the test wants it. What it holds outlives the objects that programs connect to it with.
class FakeNetwork {
public:
    using Service = systools::NetworkService;

    [[nodiscard]] auto connector() {
        return [this]() -> util::Result<std::unique_ptr<Service>> {
            if (!running) return systools::toolError(systools::kNoService, "NetworkManager is not running");
            return std::unique_ptr<Service>(std::make_unique<Connected>(*this));
        };
    }
    [[nodiscard]] std::vector<std::string> handles() const {
        std::vector<std::string> all;
        for (const auto& each : connections) all.push_back(each.handle);
        return all;
    }

    std::mutex mutex;  ///< for a test that changes connections from another thread before a program connects
    bool running = true;
    int addsUntilFailure = -1;  ///< the last of so many fails; -1: none does
    bool failsLate = false;     ///< and has done what it was told
    bool refusesRemoval = false;
    bool refusesSwitch = false;
    std::vector<Service::Installed> connections;
    std::map<std::string, Service::Attempt> outcomes;  ///< by handle; without one a join succeeds
    std::vector<std::string> calls;

private:
    class Connected final : public Service {
    public:
        /// Like the real one it sees the connections as they were when it connected.
        explicit Connected(FakeNetwork& network) : network_(network) {
            const std::lock_guard lock(network.mutex);
            seen_ = network.connections;
        }

        std::vector<Installed> installed(const std::string& owner) override {
            std::vector<Installed> found;
            for (const auto& each : seen_) {
                if (each.connection.owner == owner) found.push_back(each);
            }
            return found;
        }
        util::Result<std::string> add(const systools::CompanyConnection& connection) override {
            const bool fails = network_.addsUntilFailure > 0 && --network_.addsUntilFailure == 0;
            if (!fails || network_.failsLate) network_.connections.push_back({"/" + std::to_string(++network_.made_), connection});
            seen_ = network_.connections;
            if (fails) return systools::toolError(systools::kForbidden, "not allowed");
            return network_.connections.back().handle;
        }
        util::Result<void> remove(const std::string& handle) override {
            if (network_.refusesRemoval) return systools::toolError(systools::kFailure, "kept " + handle);
            std::erase_if(network_.connections, [&](const auto& each) { return each.handle == handle; });
            return {};
        }
        std::vector<Attempt> join(const std::vector<Installed>& connections, const std::optional<std::string>& interface) override {
            std::vector<Attempt> attempts;
            for (const auto& each : connections) {
                network_.calls.push_back("join " + each.handle + " on " + interface.value_or("any"));
                const auto outcome = network_.outcomes.find(each.handle);
                attempts.push_back(outcome == network_.outcomes.end() ? Attempt{each.connection.network, "dev0", {}} : outcome->second);
            }
            return attempts;
        }
        util::Result<void> leave(const std::string& handle) override {
            network_.calls.push_back("leave " + handle);
            return {};
        }
        util::Result<void> setWireless(bool on) override {
            network_.calls.emplace_back(on ? "radios on" : "radios off");
            if (network_.refusesSwitch) return systools::toolError(systools::kForbidden, "not allowed");
            return {};
        }

    private:
        FakeNetwork& network_;
        std::vector<Installed> seen_;
    };

    int made_ = 0;
};

}  // namespace halvane::test
