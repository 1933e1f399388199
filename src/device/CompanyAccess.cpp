#include "device/CompanyAccess.h"

#include "device/HVDeviceInfoHelper.h"
#include "util/Text.h"

namespace halvane::device {

namespace {

constexpr const char* kService = "Wi-Fi";

}  // namespace

void CompanyAccess::revoke(const std::optional<std::string>& certificateName) {
    if (waiting_->exchange(true)) return;
    // In one block: a client that ends meanwhile must not leave the network off.
    to_.toolQueue.async([&device = to_.device, waiting = waiting_, name = util::replaced(certificateName.value_or(""), ".pfx", "")] {
        waiting->store(false);
        if (!name.empty()) (void)device.delCertWithName(name);
        (void)device.closeNetworkService(kService);
        (void)device.openNetworkService(kService);
    });
}

}  // namespace halvane::device
