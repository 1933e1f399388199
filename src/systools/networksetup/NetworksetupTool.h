#pragma once

#include "systools/Tool.h"
#include "systools/network/NetworkService.h"

#include <chrono>
#include <functional>
#include <memory>

namespace halvane::systools {

/// The commands of `networksetup`: join a company network, switch the network service off and on.
class NetworksetupTool {
public:
    using Connect = std::function<util::Result<std::unique_ptr<NetworkService>>()>;

    /// `owner`: the name of the user whose connections these are.
    NetworksetupTool(std::string owner, Connect connect) : owner_(std::move(owner)), connect_(std::move(connect)) {}

    int run(const Arguments& arguments, std::ostream& out, std::ostream& err);
    static const char* usageText();

private:
    int join(const std::string& interface, const std::string& network, std::ostream& err);
    int switchService(bool on, std::ostream& err);
    /// Absent for a connection that may be tried.
    static std::optional<util::Error> unusable(const CompanyConnection& connection);

    const std::string owner_;
    const Connect connect_;
};

}  // namespace halvane::systools
