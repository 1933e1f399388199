#pragma once

#include "linux/GioCalls.h"
#include "platform/Keychain.h"

#include <libsecret/secret.h>

#include <vector>

namespace halvane::linux {

/// One visit to the Secret Service: opened, asked and left within one deadline. The door to the
/// secret library. One thread.
class SecretStore {
public:
    using Items = std::vector<GObjectPointer<SecretItem>>;

    explicit SecretStore(std::chrono::milliseconds deadline) : calls_(deadline) {}
    ~SecretStore();
    SecretStore(const SecretStore&) = delete;
    SecretStore& operator=(const SecretStore&) = delete;

    /// First of all. Errors: no bus, no service, one that does not answer.
    util::Result<void> open();

    /// All items of the query. Error: one of them, or the collection where they would be, is locked.
    util::Result<Items> find(const platform::KeychainQuery& query);
    util::Result<util::Bytes> secretOf(SecretItem& item);
    util::Result<void> create(const platform::KeychainQuery& query, const util::Bytes& data);
    util::Result<void> destroy(SecretItem& item);

private:
    util::Result<void> connect();
    util::Result<void> startService();
    util::Result<VariantPointer> askBus(const char* method, GVariant* arguments);
    /// Error: there is none, or it is locked.
    util::Result<GObjectPointer<SecretCollection>> openCollection();
    util::Error failure(const char* what) const;

    GioCalls calls_;  // first: all below lives in its context
    GObjectPointer<GDBusConnection> bus_;
    GObjectPointer<SecretService> service_;
};

}  // namespace halvane::linux
