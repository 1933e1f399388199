#pragma once

#include "linux/GioCalls.h"
#include "systools/network/CompanyConnection.h"
#include "systools/network/Libnm.h"

#include <optional>

namespace halvane::systools {

/// A company connection as NetworkManager's settings, and back.
///
/// WPA2 or WPA3 Enterprise, or wired 802.1X, by EAP-TLS. The key stays in its file, for a copy handed over would be
/// left behind in NetworkManager's directory. The authenticator has to have a certificate of the given authorities,
/// never of the system's, and one of the given names. What else we need to know stands in the connection's user data.
struct ConnectionSettings {
    static linux::GObjectPointer<NMConnection> make(const CompanyConnection& connection);
    /// Absent for a connection that no profile of ours made.
    static std::optional<CompanyConnection> read(NMConnection& settings);
};

}  // namespace halvane::systools
