#pragma once

#include <optional>
#include <string>

namespace halvane::server {

/// What tells one package from all others. Its parts become a file name and an address, so nothing but the characters
/// that Debian's policy allows gets in: neither "/" nor "_" is one of them.
struct PackageName {
    std::string name;          ///< "halvane"
    std::string version;       ///< "1.1.0", "1:2.0~rc1-1"
    std::string architecture;  ///< "amd64", "all"

    /// Absent when a part is none by the policy.
    static std::optional<PackageName> parse(std::string name, std::string version, std::string architecture);

    /// "halvane_1.1.0_amd64.deb"
    [[nodiscard]] std::string fileName() const { return name + "_" + version + "_" + architecture + ".deb"; }
};

}  // namespace halvane::server
