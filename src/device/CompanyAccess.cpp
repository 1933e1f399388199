#include "device/CompanyAccess.h"

#include "device/HVDeviceInfoHelper.h"
#include "util/Text.h"

#include <mutex>
#include <set>

namespace halvane::device {

namespace {

constexpr const char* kService = "Wi-Fi";

}  // namespace

/// The names whose revocation waits in the queue. Any thread.
class CompanyAccess::Waiting {
public:
    /// Whether it was not there yet.
    bool add(const std::string& name) {
        const std::lock_guard lock(mutex_);
        return names_.insert(name).second;
    }
    void remove(const std::string& name) {
        const std::lock_guard lock(mutex_);
        names_.erase(name);
    }

private:
    std::mutex mutex_;
    std::set<std::string> names_;  // guarded by mutex_
};

CompanyAccess::CompanyAccess(Collaborators collaborators) : to_(collaborators), waiting_(std::make_shared<Waiting>()) {}

void CompanyAccess::revoke(const std::optional<std::string>& certificateName) {
    const std::string name = util::replaced(certificateName.value_or(""), ".pfx", "");
    if (!waiting_->add(name)) return;
    // In one block: a client that ends meanwhile must not leave the network off.
    to_.toolQueue.async([&device = to_.device, waiting = waiting_, name] {
        waiting->remove(name);
        if (!name.empty()) (void)device.delCertWithName(name);
        (void)device.closeNetworkService(kService);
        (void)device.openNetworkService(kService);
    });
}

}  // namespace halvane::device
