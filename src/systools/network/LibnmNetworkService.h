#pragma once

#include "linux/GioCalls.h"
#include "systools/network/Libnm.h"
#include "systools/network/NetworkService.h"

#include <chrono>
#include <memory>
#include <set>

namespace halvane::systools {

/// NetworkManager, by its own library over the system bus.
class LibnmNetworkService final : public NetworkService {
public:
    /// Error kNoService: no bus, no NetworkManager on it, or one that does not answer.
    static util::Result<std::unique_ptr<NetworkService>> connect();

    std::vector<Installed> installed(const std::string& owner) override;
    util::Result<std::string> add(const CompanyConnection& connection) override;
    util::Result<void> remove(const std::string& handle) override;
    std::vector<Attempt> join(const std::vector<Installed>& connections, const std::optional<std::string>& interface) override;
    util::Result<void> leave(const std::string& handle) override;
    util::Result<void> setWireless(bool on) override;

private:
    using Device = linux::GObjectPointer<NMDevice>;
    struct Round;

    LibnmNetworkService();
    [[nodiscard]] NMActiveConnection* activeOf(const std::string& handle) const;
    util::Result<Device> deviceFor(const Installed& installed, NMConnection& connection, const std::optional<std::string>& interface,
                                   const std::set<std::string>& taken);
    Round start(const std::vector<Installed>& connections, const std::optional<std::string>& interface, std::vector<Attempt>& attempts,
                std::set<std::size_t>& waiting, const std::set<std::string>& joined);
    bool isInReach(NMDevice& device, const CompanyConnection& connection);

    void giveTime(std::chrono::milliseconds wanted, std::chrono::milliseconds atLeast = std::chrono::milliseconds(0));

    linux::GioCalls calls_;
    const std::chrono::steady_clock::time_point end_;
    linux::GObjectPointer<NMClient> client_;
};

}  // namespace halvane::systools
