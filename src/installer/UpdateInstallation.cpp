#include "installer/UpdateInstallation.h"

#include "installer/PackageCopy.h"
#include "linux/base/Descriptor.h"
#include "util/Text.h"
#include "util/UpdateError.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <iterator>
#include <string_view>
#include <vector>

namespace halvane::installer {

namespace {

using linux::Descriptor;
using util::UpdateError;
using util::updateError;

std::string endOf(const std::filesystem::path& log) {
    constexpr std::size_t kMost = 4000;
    std::ifstream stream(log, std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(stream), {});
    return util::trimmed(text.size() > kMost ? text.substr(text.size() - kMost) : text);
}

/// Whether one of the package manager's errors has these words; while it waits it says much else.
bool complains(const std::string& said, std::string_view words) {
    for (const auto& line : util::split(said, '\n'))
        if ((line.starts_with("E: ") || line.starts_with("dpkg: error")) && line.find(words) != std::string::npos) return true;
    return false;
}

/// Why the package manager failed, by what it says in the language that it was given.
UpdateError reasonIn(const std::string& said) {
    if (complains(said, "Could not get lock")) return UpdateError::Busy;
    if (said.find("No space left on device") != std::string::npos || complains(said, "enough free space")) return UpdateError::NoSpace;
    return UpdateError::InstallationFailed;
}

}  // namespace

util::Result<std::string> UpdateInstallation::install(int package, const std::string& signature) const {
    if (const auto prepared = prepareDirectory(); !prepared) return prepared.error();
    const auto lockFile = settings_.directory / "lock";
    const Descriptor lock(::open(lockFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!lock) return updateError(UpdateError::CannotCopy, util::fileError(errno, "open " + lockFile.string()).description);
    if (::flock(lock.get(), LOCK_EX | LOCK_NB) != 0) return updateError(UpdateError::Busy, "another update is being installed");
    removeLeftCopies();

    PackageCopy copy(settings_.directory);
    const auto bytes = copy.take(package);
    if (!bytes) return bytes.error();
    if (!settings_.key.verifies(*bytes, signature))
        return updateError(UpdateError::PackageSignature, "the package is not signed with the company's key");
    const auto control = controlOf(copy.path());
    if (!control) return control.error();
    if (const auto checked = check(*control); !checked) return checked.error();
    return installCopy(copy.path(), *control);
}

util::Result<void> UpdateInstallation::prepareDirectory() const {
    const auto& directory = settings_.directory;
    ::mkdir(directory.parent_path().c_str(), 0755);
    struct stat status {};
    if ((::mkdir(directory.c_str(), 0700) != 0 && errno != EEXIST) || ::lstat(directory.c_str(), &status) != 0)
        return updateError(UpdateError::CannotCopy, util::fileError(errno, "make " + directory.string()).description);
    if (!S_ISDIR(status.st_mode) || status.st_uid != ::geteuid() || (status.st_mode & 077) != 0)
        return updateError(UpdateError::CannotCopy, directory.string() + " is no directory of the administrator's alone");
    return {};
}

void UpdateInstallation::removeLeftCopies() const {
    std::error_code unreadable;
    for (const auto& entry : std::filesystem::directory_iterator(settings_.directory, unreadable))
        if (entry.path().filename().string().starts_with(PackageCopy::kPrefix)) ::unlink(entry.path().c_str());
}

util::Result<UpdateInstallation::Control> UpdateInstallation::controlOf(const std::filesystem::path& copy) const {
    const auto output = settings_.dpkgDeb.outputOf({"--show", "--showformat=${Package}\\n${Version}\\n${Architecture}\\n", copy.string()});
    const auto lines = output ? util::split(*output, '\n') : std::vector<std::string>();
    constexpr std::size_t kFields = 3;
    if (lines.size() != kFields + 1) return updateError(UpdateError::OtherPackage, "what was sent is no package");
    return Control{lines[0], lines[1], lines[2]};
}

util::Result<void> UpdateInstallation::check(const Control& control) const {
    if (control.package != settings_.package)
        return updateError(UpdateError::OtherPackage, "the package is " + control.package + ", not " + settings_.package);
    const auto architecture = settings_.dpkg.outputOf({"--print-architecture"});
    if (!architecture) return updateError(UpdateError::InstallationFailed, architecture.error().description);
    if (control.architecture != "all" && control.architecture != util::trimmed(*architecture))
        return updateError(UpdateError::OtherArchitecture, "the package is for " + control.architecture);
    const auto installed = known();
    if (!installed) return installed.error();
    const auto there = util::PackageVersion::parse(installed->version);
    const auto offered = util::PackageVersion::parse(control.version);
    // One that was interrupted is brought to its end by the same package.
    if (there && offered && (*offered > *there || (*offered == *there && !installed->isWhole))) return {};
    return updateError(UpdateError::NotHigher,
                       "version " + control.version + " is not higher than " + installed->version + ", which is installed");
}

util::Result<UpdateInstallation::Known> UpdateInstallation::known() const {
    const auto output = settings_.dpkgQuery.outputOf({"--show", "--showformat=${db:Status-Status} ${Version}", settings_.package});
    const auto words = output ? util::split(*output, ' ') : std::vector<std::string>();
    constexpr std::array<std::string_view, 3> kWhole = {"installed", "triggers-awaited", "triggers-pending"};
    constexpr std::array<std::string_view, 3> kBegun = {"unpacked", "half-configured", "half-installed"};
    const bool isWhole = words.size() == 2 && std::ranges::find(kWhole, words[0]) != kWhole.end();
    if (!isWhole && (words.size() != 2 || std::ranges::find(kBegun, words[0]) == kBegun.end()))
        return updateError(UpdateError::InstallationFailed, settings_.package + " is not installed as a package");
    return Known{words[1], isWhole};
}

util::Result<std::string> UpdateInstallation::installCopy(const std::filesystem::path& copy, const Control& control) const {
    auto ended = runAptGet(copy);
    if (ended && complains(ended->said, "dpkg was interrupted")) {
        // By a power failure, say. Of the packages that wait to be configured, ours alone is what the administrator agreed to.
        (void)settings_.dpkg.run({"--configure", "--force-confdef", "--force-confold", settings_.package}, log());
        ended = runAptGet(copy);
    }
    if (!ended) return updateError(UpdateError::InstallationFailed, ended.error().description);
    const auto now = known();
    if (ended->exitCode == 0 && now && now->isWhole && now->version == control.version) return control.version;
    return updateError(reasonIn(ended->said), "the package manager ended with " + std::to_string(ended->exitCode) +
                                                  (ended->said.empty() ? "" : ":\n" + ended->said));
}

util::Result<UpdateInstallation::Ended> UpdateInstallation::runAptGet(const std::filesystem::path& copy) const {
    const auto exitCode =
        settings_.aptGet.run({"--quiet", "--assume-yes", "--no-remove", "--only-upgrade", "--option=APT::Sandbox::User=root",
                              "--option=DPkg::Lock::Timeout=60", "--option=Dpkg::Use-Pty=0", "--option=Dpkg::Options::=--force-confdef",
                              "--option=Dpkg::Options::=--force-confold", "install", copy.string()},
                             log());
    if (!exitCode) return exitCode.error();
    return Ended{*exitCode, *exitCode == 0 ? std::string() : endOf(log())};
}

}  // namespace halvane::installer
