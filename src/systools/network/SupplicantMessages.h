#pragma once

#include <gio/gio.h>

#include <optional>
#include <string>

namespace halvane::systools {

/// Listens to what the supplicant says of authentications while it lives: NetworkManager itself only knows that one
/// failed. Administrators hear it (and members of "netdev", on Debian), other users do not. One thread, that of the
/// connection's main context.
class SupplicantMessages {
public:
    /// `bus` is the system's.
    explicit SupplicantMessages(GDBusConnection* bus);
    ~SupplicantMessages();
    SupplicantMessages(const SupplicantMessages&) = delete;
    SupplicantMessages& operator=(const SupplicantMessages&) = delete;

    /// Why the last authentication failed, as a clause; absent when nothing was heard.
    [[nodiscard]] const std::optional<std::string>& reason() const { return reason_; }

private:
    static void onEap(GDBusConnection* bus, const char* sender, const char* path, const char* interface, const char* signal,
                      GVariant* parameters, void* self);

    GDBusConnection* const bus_;
    unsigned subscription_ = 0;
    std::optional<std::string> reason_;
};

}  // namespace halvane::systools
