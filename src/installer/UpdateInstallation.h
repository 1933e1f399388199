#pragma once

#include "installer/SystemProgram.h"
#include "util/PackageVersion.h"
#include "util/PublicKey.h"
#include "util/Result.h"

#include <filesystem>
#include <string>

namespace halvane::installer {

/// Installs one package over the client, as the administrator. Nothing of what the caller hands over is believed: the bytes are
/// copied into a directory of the administrator's first, and there their signature, then the package's name, architecture and
/// version are held against what is installed; exactly those bytes go to the package manager. One thread.
///
/// One installation at a time; each has a copy under a name of its own, so that none can touch what an interrupted one's package
/// manager may still read. What is left is removed by the next.
class UpdateInstallation {
public:
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
    /// What the package manager knows of the client.
    struct Known {
        std::string version;
        bool isWhole;  ///< false: an installation of it was interrupted
    };

    struct Ended {
        int exitCode;
        std::string said;  ///< the end of it, when it failed
    };

    [[nodiscard]] std::filesystem::path log() const { return settings_.directory / "apt.log"; }
    [[nodiscard]] util::Result<void> prepareDirectory() const;
    void removeLeftCopies() const;
    [[nodiscard]] util::Result<Control> controlOf(const std::filesystem::path& copy) const;
    [[nodiscard]] util::Result<void> check(const Control& control) const;
    [[nodiscard]] util::Result<Known> known() const;
    [[nodiscard]] util::Result<std::string> installCopy(const std::filesystem::path& copy, const Control& control) const;
    [[nodiscard]] util::Result<Ended> runAptGet(const std::filesystem::path& copy) const;

    const Settings settings_;
};

}  // namespace halvane::installer
