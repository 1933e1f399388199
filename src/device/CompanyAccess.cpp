#include "device/CompanyAccess.h"

#include "device/HVDeviceInfoHelper.h"
#include "util/Text.h"

#include <map>
#include <mutex>

namespace halvane::device {

namespace {

constexpr const char* kService = "Wi-Fi";

}  // namespace

/// How many revocations of each name wait in the queue. Any thread.
class CompanyAccess::Waiting {
public:
    void add(const std::string& name) {
        const std::lock_guard lock(mutex_);
        ++counts_[name];
    }
    /// Whether the one that begins now is the last of its name.
    bool takeLast(const std::string& name) {
        const std::lock_guard lock(mutex_);
        const bool last = --counts_[name] == 0;
        if (last) counts_.erase(name);
        return last;
    }

private:
    std::mutex mutex_;
    std::map<std::string, int> counts_;  // guarded by mutex_
};

CompanyAccess::CompanyAccess(Collaborators collaborators) : to_(collaborators), waiting_(std::make_shared<Waiting>()) {}

void CompanyAccess::revoke(const std::optional<std::string>& certificateName) {
    const std::string name = util::replaced(certificateName.value_or(""), ".pfx", "");
    waiting_->add(name);
    // In one block: a client that ends meanwhile must not leave the network off.
    to_.toolQueue.async([&device = to_.device, waiting = waiting_, name] {
        if (!waiting->takeLast(name)) return;
        if (!name.empty()) (void)device.delCertWithName(name);
        (void)device.closeNetworkService(kService);
        (void)device.openNetworkService(kService);
    });
}

}  // namespace halvane::device
