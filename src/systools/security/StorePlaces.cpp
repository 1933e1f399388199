#include "systools/security/StorePlaces.h"

#include "systools/security/NssDatabase.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

namespace halvane::systools {

namespace {

using std::filesystem::path;

std::optional<path> absolute(const std::optional<std::string>& text) {
    if (!text || !path(*text).is_absolute()) return std::nullopt;
    return path(*text);
}

}  // namespace

util::Result<StorePlaces> StorePlaces::find(const Variable& variable, const std::optional<path>& accountHome) {
    auto home = absolute(variable("HOME"));
    if (!home) home = accountHome;
    auto data = absolute(variable("XDG_DATA_HOME"));
    if (!data && home) data = *home / ".local/share";
    if (!data) return util::fileError(ENOENT, "find the home directory (HOME is not set and the user has none)");

    StorePlaces places;
    places.identities = *data / "halvane/identities";
    places.profiles = *data / "halvane/profiles";
    places.databases.push_back(*data / "pki/nssdb");
    if (home) places.databases.push_back(*home / ".pki/nssdb");
    std::stable_partition(places.databases.begin(), places.databases.end(), NssDatabase::exists);
    return places;
}

util::Result<StorePlaces> StorePlaces::ofThisUser() {
    const auto* account = ::getpwuid(::geteuid());
    const auto variable = [](const char* name) {
        const char* value = std::getenv(name);
        return value == nullptr ? std::nullopt : std::optional<std::string>(value);
    };
    return find(variable, account == nullptr ? std::nullopt : absolute(account->pw_dir));
}

}  // namespace halvane::systools
