#pragma once

#include "installer/SystemProgram.h"
#include "util/PackageVersion.h"
#include "util/PublicKey.h"
#include "util/Result.h"

#include <cstdint>
#include <filesystem>
#include <string>

namespace halvane::installer {

/// Installs one package over the client, as the administrator. Nothing of what the caller hands over is believed: the bytes are
/// copied into a directory of the administrator's first, and there their signature, then the package's name, architecture and
/// version are held against what is installed; exactly those bytes go to the package manager. One thread.
///
/// One installation at a time. A copy that an interrupted one left is removed by the next.
class UpdateInstallation {
public:
    /// More nobody sends.
    static constexpr std::uint64_t kLargestPackage = std::uint64_t{256} << 20;

    struct Settings {
        util::PublicKey key;
        std::string package;              ///< the only one that is ever installed
        std::filesystem::path directory;  ///< made 0700; its parent belongs to the administrator
        SystemProgram dpkgDeb{"/usr/bin/dpkg-deb"};
        SystemProgram dpkg{"/usr/bin/dpkg"};
        SystemProgram dpkgQuery{"/usr/bin/dpkg-query"};
        SystemProgram aptGet{"/usr/bin/apt-get"};
    };

    explicit UpdateInstallation(Settings settings) : settings_(std::move(settings)) {}

    /// `package`: descriptor, read from where it stands to its end; `signature`: base64. Answers the version that is installed now.
    /// Errors: `util::UpdateError`. Blocks for as long as the package manager takes.
    [[nodiscard]] util::Result<std::string> install(int package, const std::string& signature) const;

private:
    struct Control {
        std::string package;
        std::string version;
        std::string architecture;
    };

    struct Ended {
        int exitCode;
        std::string said;  ///< the end of it, when it failed
    };

    [[nodiscard]] std::filesystem::path log() const { return settings_.directory / "apt.log"; }
    [[nodiscard]] std::filesystem::path copy() const { return settings_.directory / "package.deb"; }
    [[nodiscard]] util::Result<void> prepareDirectory() const;
    [[nodiscard]] util::Result<util::Bytes> takeCopy(int package) const;
    [[nodiscard]] util::Result<Control> controlOfCopy() const;
    [[nodiscard]] util::Result<void> check(const Control& control) const;
    [[nodiscard]] util::Result<std::string> installedVersion() const;
    [[nodiscard]] util::Result<std::string> installCopy(const Control& control) const;
    [[nodiscard]] util::Result<Ended> runAptGet() const;

    const Settings settings_;
};

}  // namespace halvane::installer
