#include "linux/SecretServiceKeychain.h"

#include "linux/SecretStore.h"

#include <algorithm>

namespace halvane::linux {

namespace {

/// The library takes them as text that ends at a NUL: such a query would mean another item.
bool isUsable(const platform::KeychainQuery& query) {
    const std::string* const texts[] = {&query.itemClass, &query.service, &query.account, &query.accessibility};
    return std::ranges::all_of(texts, [](const std::string* text) { return text->find('\0') == std::string::npos; });
}

/// The items that match, in a store that is open from then on.
util::Result<SecretStore::Items> openAndFind(SecretStore& store, const platform::KeychainQuery& query) {
    if (!isUsable(query)) return util::serviceError("secret service: a name with a NUL");
    if (auto opened = store.open(); !opened) return opened.error();
    return store.find(query);
}

}  // namespace

template <typename T>
util::Result<T> SecretServiceKeychain::reported(util::Result<T> outcome) {
    if (!outcome && !reported_.exchange(true)) log_.write("keychain: nothing is stored: " + outcome.error().description);
    return outcome;
}

util::Result<void> SecretServiceKeychain::add(const platform::KeychainQuery& query, const util::Bytes& data) {
    return reported([&]() -> util::Result<void> {
        SecretStore store(deadline_);
        const auto found = openAndFind(store, query);
        if (!found) return found.error();
        if (!found->empty()) return util::serviceError("secret service: the item is there already");
        return store.create(query, data);
    }());
}

util::Result<void> SecretServiceKeychain::remove(const platform::KeychainQuery& query) {
    return reported([&]() -> util::Result<void> {
        SecretStore store(deadline_);
        const auto found = openAndFind(store, query);
        if (!found) return found.error();
        for (const auto& item : *found) {
            if (auto destroyed = store.destroy(*item); !destroyed) return destroyed;
        }
        return {};
    }());
}

util::Result<std::optional<util::Bytes>> SecretServiceKeychain::copyMatching(const platform::KeychainQuery& query) {
    using Match = std::optional<util::Bytes>;
    return reported([&]() -> util::Result<Match> {
        SecretStore store(deadline_);
        const auto found = openAndFind(store, query);
        if (!found) return found.error();
        if (found->empty()) return Match();
        auto secret = store.secretOf(*found->front());
        if (!secret) return secret.error();
        return Match(std::move(*secret));
    }());
}

}  // namespace halvane::linux
