#pragma once

#include "linux/device/SystemFiles.h"

#include <cstdint>
#include <string>
#include <vector>

namespace halvane::linux {

/// A way out of this network.
struct DefaultRoute {
    std::string interface;
    std::uint64_t metric = 0;  ///< the kernel takes the smallest
};

/// The default routes in use, of IPv4 and then IPv6, the best first; equal ones keep that order.
/// Routes that reject and routes of the loopback interface are left out.
std::vector<DefaultRoute> defaultRoutes(const SystemFiles& files);

}  // namespace halvane::linux
