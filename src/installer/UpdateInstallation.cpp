#include "installer/UpdateInstallation.h"

#include "linux/base/Descriptor.h"
#include "util/Text.h"
#include "util/UpdateError.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

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

/// Goes with the end of the installation, whatever that is.
class CopyOnDisk {
public:
    explicit CopyOnDisk(std::filesystem::path path) : path_(std::move(path)) { ::unlink(path_.c_str()); }
    ~CopyOnDisk() { ::unlink(path_.c_str()); }
    CopyOnDisk(const CopyOnDisk&) = delete;
    CopyOnDisk& operator=(const CopyOnDisk&) = delete;

private:
    const std::filesystem::path path_;
};

util::Error writeError(int code, const std::filesystem::path& file) {
    const bool isFull = code == ENOSPC || code == EDQUOT;
    return updateError(isFull ? UpdateError::NoSpace : UpdateError::CannotCopy,
                       util::fileError(code, "copy the package to " + file.string()).description);
}

/// 0, or an errno.
int writeAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto written = ::write(file, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) return errno;
        if (written > 0) bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

std::string endOf(const std::filesystem::path& log) {
    constexpr std::size_t kMost = 4000;
    std::ifstream stream(log, std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(stream), {});
    return util::trimmed(text.size() > kMost ? text.substr(text.size() - kMost) : text);
}

/// Why the package manager failed, by what it says in the language that it was given.
UpdateError reasonIn(const std::string& said) {
    if (said.find("Could not get lock") != std::string::npos) return UpdateError::Busy;
    if (said.find("No space left on device") != std::string::npos || said.find("enough free space") != std::string::npos)
        return UpdateError::NoSpace;
    return UpdateError::InstallationFailed;
}

}  // namespace

util::Result<std::string> UpdateInstallation::install(int package, const std::string& signature) const {
    if (const auto prepared = prepareDirectory(); !prepared) return prepared.error();
    const auto lockFile = settings_.directory / "lock";
    const Descriptor lock(::open(lockFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!lock) return writeError(errno, lockFile);
    if (::flock(lock.get(), LOCK_EX | LOCK_NB) != 0) return updateError(UpdateError::Busy, "another update is being installed");

    const CopyOnDisk onDisk(copy());
    const auto bytes = takeCopy(package);
    if (!bytes) return bytes.error();
    if (!settings_.key.verifies(*bytes, signature))
        return updateError(UpdateError::PackageSignature, "the package is not signed with the company's key");
    const auto control = controlOfCopy();
    if (!control) return control.error();
    if (const auto checked = check(*control); !checked) return checked.error();
    return installCopy(*control);
}

util::Result<void> UpdateInstallation::prepareDirectory() const {
    const auto& directory = settings_.directory;
    ::mkdir(directory.parent_path().c_str(), 0755);
    if (::mkdir(directory.c_str(), 0700) != 0 && errno != EEXIST) return writeError(errno, directory);
    struct stat status {};
    if (::lstat(directory.c_str(), &status) != 0) return writeError(errno, directory);
    if (!S_ISDIR(status.st_mode) || status.st_uid != ::geteuid() || (status.st_mode & 077) != 0)
        return updateError(UpdateError::CannotCopy, directory.string() + " is no directory of the administrator's alone");
    return {};
}

/// The bytes that were written, which are verified as they are here: the caller's may change under us.
util::Result<util::Bytes> UpdateInstallation::takeCopy(int package) const {
    const Descriptor file(::open(copy().c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!file) return writeError(errno, copy());
    util::Bytes bytes;
    std::vector<char> buffer(std::size_t{256} << 10);
    while (true) {
        const auto got = ::read(package, buffer.data(), buffer.size());
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return updateError(UpdateError::CannotCopy, util::fileError(errno, "read the package").description);
        if (got == 0) break;
        const std::string_view piece(buffer.data(), static_cast<std::size_t>(got));
        if (bytes.size() + piece.size() > kLargestPackage) return updateError(UpdateError::OtherPackage, "the package is too large");
        if (const int code = writeAll(file.get(), piece); code != 0) return writeError(code, copy());
        bytes.append(piece);
    }
    if (::fsync(file.get()) != 0) return writeError(errno, copy());
    return bytes;
}

util::Result<UpdateInstallation::Control> UpdateInstallation::controlOfCopy() const {
    const auto output =
        settings_.dpkgDeb.outputOf({"--show", "--showformat=${Package}\\n${Version}\\n${Architecture}\\n", copy().string()});
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
    const auto installed = installedVersion();
    if (!installed) return installed.error();
    const auto there = util::PackageVersion::parse(*installed);
    const auto offered = util::PackageVersion::parse(control.version);
    if (!there || !offered || *offered <= *there)
        return updateError(UpdateError::NotHigher,
                           "version " + control.version + " is not higher than " + *installed + ", which is installed");
    return {};
}

util::Result<std::string> UpdateInstallation::installedVersion() const {
    const auto output = settings_.dpkgQuery.outputOf({"--show", "--showformat=${db:Status-Want} ${Version}", settings_.package});
    constexpr std::string_view kWanted = "install ";
    if (!output || !output->starts_with(kWanted))
        return updateError(UpdateError::InstallationFailed, settings_.package + " is not installed as a package");
    return output->substr(kWanted.size());
}

util::Result<std::string> UpdateInstallation::installCopy(const Control& control) const {
    auto ended = runAptGet();
    if (ended && ended->said.find("dpkg was interrupted") != std::string::npos) {
        // By a power failure, say. It asks the administrator for this, whose word we have.
        const auto mended = settings_.dpkg.run({"--configure", "--pending", "--force-confdef", "--force-confold"}, log());
        if (mended && *mended == 0) ended = runAptGet();
    }
    if (!ended) return updateError(UpdateError::InstallationFailed, ended.error().description);
    const auto now = installedVersion();
    if (ended->exitCode == 0 && now && *now == control.version) return control.version;
    return updateError(reasonIn(ended->said), "the package manager ended with " + std::to_string(ended->exitCode) +
                                                  (ended->said.empty() ? "" : ":\n" + ended->said));
}

util::Result<UpdateInstallation::Ended> UpdateInstallation::runAptGet() const {
    const auto exitCode =
        settings_.aptGet.run({"--quiet", "--assume-yes", "--no-remove", "--only-upgrade", "--option=APT::Sandbox::User=root",
                              "--option=DPkg::Lock::Timeout=60", "--option=Dpkg::Use-Pty=0", "--option=Dpkg::Options::=--force-confdef",
                              "--option=Dpkg::Options::=--force-confold", "install", copy().string()},
                             log());
    if (!exitCode) return exitCode.error();
    return Ended{*exitCode, *exitCode == 0 ? std::string() : endOf(log())};
}

}  // namespace halvane::installer
