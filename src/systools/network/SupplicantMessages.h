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

    /// Why an authentication failed, as a clause; absent when nothing was heard.
    [[nodiscard]] const std::optional<std::string>& reason() const { return reason_; }
    /// Whether nobody at all has spoken to the supplicant. Never known to who is not allowed to listen.
    [[nodiscard]] bool onlySilence() const { return mayListen_ && !begun_; }

private:
    static void onEap(GDBusConnection* bus, const char* sender, const char* path, const char* interface, const char* signal,
                      GVariant* parameters, void* self);

    GDBusConnection* const bus_;
    unsigned subscription_ = 0;
    const bool mayListen_;
    bool begun_ = false;
    std::optional<std::string> reason_;
};

}  // namespace halvane::systools
