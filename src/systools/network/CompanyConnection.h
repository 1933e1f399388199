#pragma once

#include "systools/network/Medium.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace halvane::systools {

/// A connection of NetworkManager's that a profile made: one network, one user, one certificate. The connection
/// itself keeps all of this, so that nothing else has to be kept in step with it. A value.
struct CompanyConnection {
    std::string profile;  ///< the profile's identifier
    std::string owner;    ///< name of the user who alone may use and see it
    Medium medium = Medium::Wifi;
    std::string network;  ///< what it is joined by; for Wi-Fi the SSID
    bool hidden = false;
    bool onlyWpa3 = false;
    std::filesystem::path identityFile;     ///< PKCS#12; read by the network's programs at each join
    std::string identityPassword;           ///< write only: never read back
    std::filesystem::path authoritiesFile;  ///< PEM
    std::vector<std::string> serverNames;   ///< never empty; an authenticator needs one of them
    std::string userName;                   ///< who we say we are before the certificate proves it
    std::int64_t certificateEnds = 0;       ///< seconds since 1970
};

}  // namespace halvane::systools
