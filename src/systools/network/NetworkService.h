#pragma once

#include "systools/network/CompanyConnection.h"
#include "util/Result.h"

#include <optional>
#include <string>
#include <vector>

namespace halvane::systools {

/// The computer's network, as far as our profiles are concerned. One thread; every operation blocks and ends within
/// its time. Errors are `toolError`s: their code is an ExitCode.
class NetworkService {
public:
    /// A connection that is there. The handle is the service's name for it.
    struct Installed {
        std::string handle;
        CompanyConnection connection;  ///< without what only a join needs: password, servers' names, user's name
    };

    /// How an attempt to join went.
    struct Attempt {
        std::string network;
        std::string device;              ///< empty when none could be used
        std::optional<util::Error> why;  ///< absent: joined
    };

    virtual ~NetworkService() = default;

    /// Those that profiles of `owner` made, in the order in which they were made.
    virtual std::vector<Installed> installed(const std::string& owner) = 0;
    /// It joins from now on by its own accord, whenever it can. Answers the handle.
    virtual util::Result<std::string> add(const CompanyConnection& connection) = 0;
    /// Takes it down, too. One that is not there is a success.
    virtual util::Result<void> remove(const std::string& handle) = 0;

    /// Joins each of them on a device that can, anew where it is joined already; at the same time where there are
    /// several devices, and on one device until the first that succeeds. With `interface` only on that one. One attempt
    /// for each, in their order.
    virtual std::vector<Attempt> join(const std::vector<Installed>& connections, const std::optional<std::string>& interface) = 0;
    /// Ends its use. One that is not in use is a success.
    virtual util::Result<void> leave(const std::string& handle) = 0;
    /// The switch of all radios.
    virtual util::Result<void> setWireless(bool on) = 0;
};

}  // namespace halvane::systools
