#include "util/SessionBus.h"

#include <sys/stat.h>

#include <cstdlib>

namespace halvane::util {

std::optional<std::string> sessionBusAddress() {
    if (const char* named = std::getenv("DBUS_SESSION_BUS_ADDRESS"); named != nullptr && *named != '\0') {
        const std::string address = named;
        return address.starts_with("autolaunch:") ? std::nullopt : std::optional(address);
    }
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime == nullptr || *runtime != '/') return std::nullopt;
    const std::string socket = std::string(runtime) + "/bus";
    struct stat status {};
    if (::stat(socket.c_str(), &status) != 0 || !S_ISSOCK(status.st_mode)) return std::nullopt;
    return "unix:path=" + socket;
}

}  // namespace halvane::util
