#pragma once

#include "platform/Keychain.h"

#include <map>
#include <string>
#include <vector>

namespace halvane::test {

/// A secret store that counts items per service, refuses a second one like the real thing, and can
/// be made to fail. `calls` is the order of operations.
class MemoryKeychain final : public platform::Keychain {
public:
    util::Result<void> add(const platform::KeychainQuery& query, const util::Bytes& data) override {
        calls.push_back("add " + query.service);
        if (unavailable || refuseAdd) return util::serviceError("no secret store");
        if (!items.emplace(query.service, data).second) return util::serviceError("duplicate item");
        return {};
    }
    util::Result<void> remove(const platform::KeychainQuery& query) override {
        calls.push_back("remove " + query.service);
        if (unavailable) return util::serviceError("no secret store");
        items.erase(query.service);
        return {};
    }
    util::Result<std::optional<util::Bytes>> copyMatching(const platform::KeychainQuery& query) override {
        calls.push_back("copy " + query.service);
        if (unavailable) return util::serviceError("no secret store");
        const auto found = items.find(query.service);
        return found == items.end() ? std::optional<util::Bytes>() : std::optional(found->second);
    }

    std::map<std::string, util::Bytes> items;
    bool unavailable = false;
    bool refuseAdd = false;
    std::vector<std::string> calls;
};

}  // namespace halvane::test
