#pragma once

#include "systools/network/Medium.h"
#include "util/Bytes.h"
#include "util/Result.h"

#include <string>
#include <vector>

namespace halvane::systools {

/// What a configuration profile asks for. A property list with a "PayloadIdentifier" of its own and the payloads
/// in its "PayloadContent", each a dictionary with a "PayloadType":
///
/// - "com.halvane.payload.pkcs12": "PayloadUUID", "PayloadContent" (the file), "Password".
/// - "com.halvane.payload.root": "PayloadContent" (one certificate, DER or PEM); all networks trust all of them.
/// - "com.halvane.payload.wifi", "com.halvane.payload.wired": "SSID_STR" or "NetworkName",
///   "PayloadCertificateUUID" (the identity to join with), "EncryptionType" (Wi-Fi: "WPA", "WPA2", "WPA3"; only the
///   last makes a difference), "HIDDEN_NETWORK" (Wi-Fi), and "EAPClientConfiguration" with "AcceptEAPTypes" (13,
///   EAP-TLS, must be among them), "TLSTrustedServerNames" (at least one) and "UserName" (else the certificate's).
///
/// Payloads of other kinds are left out, named in `skipped`. A value.
struct ConfigurationProfile {
    /// Certificates make a profile large, but not larger than this.
    static constexpr std::size_t kLargest = std::size_t{4} << 20;

    struct Identity {
        std::string uuid;
        std::string password;
        util::Bytes pkcs12;
    };
    struct Network {
        Medium medium = Medium::Wifi;
        std::string name;
        bool hidden = false;
        bool onlyWpa3 = false;
        std::string identityUuid;
        std::vector<std::string> serverNames;  ///< never empty; each a host name
        std::string userName;                  ///< empty: the certificate's
    };

    std::string identifier;  ///< one plain component of a path
    std::vector<Identity> identities;
    std::vector<util::Bytes> roots;  ///< never empty where there are networks: an authenticator needs one of them
    std::vector<Network> networks;
    std::vector<std::string> skipped;

    /// Whether it may name a profile: it becomes a directory's name.
    static bool isIdentifier(const std::string& text);
    /// Errors say, for a person, what in the profile is wrong.
    static util::Result<ConfigurationProfile> parse(const util::Bytes& bytes);
};

}  // namespace halvane::systools
