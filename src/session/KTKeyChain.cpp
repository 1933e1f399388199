#include "session/KTKeyChain.h"

#include "util/KeyedArchive.h"
#include "util/Log.h"

namespace halvane::session {

namespace {
constexpr const char* kArchiveClass = "KTKeyChainRecord";
constexpr const char* kRootKey = "root";
}  // namespace

KTKeyChain::KTKeyChain(platform::Keychain& keychain, util::Log& log) : keychain_(keychain), log_(log) {}

platform::KeychainQuery KTKeyChain::getKeyChainInfo(const std::string& service) {
    return {.itemClass = "generic password", .service = service, .account = service, .accessibility = "after first unlock"};
}

void KTKeyChain::saveInfo(const std::string& service, const util::Value& data) {
    const auto query = getKeyChainInfo(service);
    (void)keychain_.remove(query);
    (void)keychain_.add(query, util::KeyedArchive::encode(kArchiveClass, {{kRootKey, data}}));
}

std::optional<util::Value> KTKeyChain::loadInfo(const std::string& service) {
    const auto found = keychain_.copyMatching(getKeyChainInfo(service));
    if (!found || !*found) return std::nullopt;
    const auto record = util::KeyedArchive::decode(kArchiveClass, **found);
    const util::Value* root = record ? record->find(kRootKey) : nullptr;
    if (root != nullptr) return *root;
    log_.write("Unarchive of " + service + " failed: " + (record ? "an archive without a record" : record.error().description));
    return std::nullopt;
}

void KTKeyChain::delInfo(const std::string& service) { (void)keychain_.remove(getKeyChainInfo(service)); }

}  // namespace halvane::session
