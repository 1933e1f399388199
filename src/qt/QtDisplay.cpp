#include "qt/QtDisplay.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <xcb/xcb.h>
#include <QByteArray>
#include <QDir>
#include <QLibraryInfo>
#include <algorithm>

namespace halvane::qt {

namespace {

constexpr const char* kPlatform = "QT_QPA_PLATFORM";

bool x11Answers() {
    if (qEnvironmentVariableIsEmpty("DISPLAY")) return false;
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    const bool answers = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return answers;
}

bool socketAnswers(const QByteArray& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.isEmpty() || path.size() >= static_cast<qsizetype>(sizeof address.sun_path)) return false;
    std::ranges::copy(path, address.sun_path);
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0) return false;
    const bool answers = ::connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    ::close(descriptor);
    return answers;
}

bool waylandAnswers() {
    const QByteArray name = qgetenv("WAYLAND_DISPLAY");
    if (name.isEmpty()) return false;
    return socketAnswers(name.startsWith('/') ? name : qgetenv("XDG_RUNTIME_DIR") + '/' + name);
}

bool hasWaylandPlugin() {
    const QDir plugins(QLibraryInfo::path(QLibraryInfo::PluginsPath) + QStringLiteral("/platforms"));
    return !plugins.entryList({QStringLiteral("libqwayland*.so")}, QDir::Files).isEmpty();
}

std::optional<std::string> problemOf(const QByteArray& platform) {
    const bool any = platform.isEmpty();
    if (!any && platform != "xcb" && !platform.startsWith("wayland")) return std::nullopt;  // needs no server
    if ((any || platform == "xcb") && x11Answers()) return std::nullopt;
    if (platform != "xcb" && waylandAnswers()) {
        if (hasWaylandPlugin()) return std::nullopt;
        return "This Wayland session offers no X11 display, and Qt's Wayland support (package qt6-wayland) is not installed.";
    }
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        return "There is no display to open a window on: neither DISPLAY nor WAYLAND_DISPLAY is set.";
    return "The display cannot be opened (DISPLAY=\"" + qgetenv("DISPLAY").toStdString() + "\", WAYLAND_DISPLAY=\"" +
           qgetenv("WAYLAND_DISPLAY").toStdString() + "\").";
}

}  // namespace

std::optional<std::string> displayProblem() {
    // "xcb:option=value;wayland" lists platforms with options; one that works is enough.
    std::optional<std::string> problem;
    for (const QByteArray& entry : qgetenv(kPlatform).split(';')) {
        const auto found = problemOf(entry.left(entry.indexOf(':') < 0 ? entry.size() : entry.indexOf(':')).trimmed());
        if (!found) return std::nullopt;
        if (!problem) problem = found;
    }
    return problem;
}

void choosePlatform() {
    if (qEnvironmentVariableIsEmpty(kPlatform) && x11Answers()) qputenv(kPlatform, "xcb");
}

}  // namespace halvane::qt
