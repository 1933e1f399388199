#include "linux/XdgDirectories.h"

#include "linux/base/Descriptor.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <utility>
#include <vector>

namespace halvane::linux {

namespace {

using std::filesystem::path;

std::optional<path> absolute(const std::optional<std::string>& text) {
    if (!text || !path(*text).is_absolute()) return std::nullopt;
    return path(*text);
}

std::optional<path> homeByAccount() {
    std::vector<char> buffer(16384);
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || found == nullptr) return std::nullopt;
    return absolute(found->pw_dir == nullptr ? std::nullopt : std::optional<std::string>(found->pw_dir));
}

enum class Modes { MustBePrivate, MadePrivate };

/// Whether `directory` is a directory, no link to one, that belongs to this user and lets nobody else in.
bool isThisUsersAlone(const path& directory, Modes modes) {
    const Descriptor opened(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (!opened || ::fstat(opened.get(), &status) != 0 || status.st_uid != ::geteuid()) return false;
    if ((status.st_mode & 0777) == 0700) return true;
    return modes == Modes::MadePrivate && ::fchmod(opened.get(), 0700) == 0;
}

path temporaryFor(const XdgDirectories::Surroundings& surroundings, const path& caches) {
    if (const auto runtime = absolute(surroundings.variable("XDG_RUNTIME_DIR"));
        runtime && isThisUsersAlone(*runtime, Modes::MustBePrivate)) {
        return *runtime / "halvane";
    }
    auto own = surroundings.sharedTemporary / ("halvane-" + std::to_string(::geteuid()));
    const bool stands = ::mkdir(own.c_str(), 0700) == 0 || errno == EEXIST;
    if (stands && isThisUsersAlone(own, Modes::MadePrivate)) return own;
    // Somebody else holds that name. Where only this user can write nobody does, and later starts of
    // the program come to the same place.
    return caches / "temporary";
}

}  // namespace

XdgDirectories::Surroundings XdgDirectories::Surroundings::ofThisProcess() {
    Surroundings surroundings;
    surroundings.variable = [](const char* name) {
        const char* value = std::getenv(name);
        return value == nullptr ? std::nullopt : std::optional<std::string>(value);
    };
    surroundings.accountHome = homeByAccount();
    surroundings.sharedTemporary = absolute(surroundings.variable("TMPDIR")).value_or("/tmp");
    return surroundings;
}

util::Result<XdgDirectories> XdgDirectories::locate(path resources, const Surroundings& surroundings) {
    auto home = absolute(surroundings.variable("HOME"));
    if (!home) home = surroundings.accountHome;
    if (!home) return util::fileError(ENOENT, "find the home directory (HOME is not set and the user has none)");

    const auto base = [&](const char* variable, const char* otherwise) {
        return absolute(surroundings.variable(variable)).value_or(*home / otherwise) / "halvane";
    };
    XdgDirectories directories;
    directories.documents_ = base("XDG_DATA_HOME", ".local/share") / "Documents";
    directories.caches_ = base("XDG_CACHE_HOME", ".cache");
    directories.configuration_ = base("XDG_CONFIG_HOME", ".config");
    directories.temporary_ = temporaryFor(surroundings, directories.caches_);
    directories.resources_ = std::move(resources);
    return directories;
}

}  // namespace halvane::linux
