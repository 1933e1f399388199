#include "session/WorkAddressInfoHelper.h"

#include "platform/Preferences.h"

namespace halvane::session {

namespace {
constexpr const char* kWorkAddress = "KEY_WORKADDRESS";
}

WorkAddressInfoHelper::WorkAddressInfoHelper(platform::Preferences& preferences) : preferences_(preferences) {}

void WorkAddressInfoHelper::saveWorkAddressInfoWithData(const std::optional<util::Value::List>& data) {
    if (!data) return;
    preferences_.set(kWorkAddress, *data);
    preferences_.flush();
}

std::optional<util::Value::List> WorkAddressInfoHelper::getWorkAddressInfo() const {
    const auto stored = preferences_.get(kWorkAddress);
    return stored && stored->list() != nullptr ? std::optional(*stored->list()) : std::nullopt;
}

}  // namespace halvane::session
