#include "qt/StatusBarWatch.h"

#include "util/SessionBus.h"

#include <xcb/xcb.h>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QGuiApplication>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

namespace halvane::qt {

namespace {

const QString kService = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString kPath = QStringLiteral("/StatusNotifierWatcher");

constexpr int kPatience = 3000;  // milliseconds

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};

/// Null where the windows are not X11's.
xcb_connection_t* connection() {
    const auto* x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 == nullptr ? nullptr : x11->connection();
}

xcb_atom_t atom(xcb_connection_t* to, const std::string& name) {
    const auto question = xcb_intern_atom(to, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
    const std::unique_ptr<xcb_intern_atom_reply_t, Free> reply(xcb_intern_atom_reply(to, question, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

}  // namespace

StatusBarWatch::StatusBarWatch(std::function<void()> appeared) : appeared_(std::move(appeared)) {
    ask_.setSingleShot(true);
    QObject::connect(&ask_, &QTimer::timeout, &ask_, [this] { askForHost(); });
    watchForTray();
    if (util::sessionBusAddress()) watchForHost();
    ask_.start();
}

void StatusBarWatch::watchForHost() {
    auto bus = QDBusConnection::sessionBus();
    service_.setConnection(bus);
    service_.setWatchMode(QDBusServiceWatcher::WatchForRegistration);
    service_.addWatchedService(kService);
    QObject::connect(&service_, &QDBusServiceWatcher::serviceRegistered, &ask_, qOverload<>(&QTimer::start));
    bus.connect(kService, kPath, kService, QStringLiteral("StatusNotifierHostRegistered"), &ask_, SLOT(start()));
}

StatusBarWatch::~StatusBarWatch() { qApp->removeNativeEventFilter(this); }

void StatusBarWatch::watchForTray() {
    auto* const x11 = connection();
    if (x11 == nullptr) return;
    int screen = 0;
    int display = 0;
    if (char* host = nullptr; xcb_parse_display(nullptr, &host, &display, &screen) != 0) std::free(host);
    managerAtom_ = atom(x11, "MANAGER");
    trayAtom_ = atom(x11, "_NET_SYSTEM_TRAY_S" + std::to_string(screen));
    qApp->installNativeEventFilter(this);
}

bool StatusBarWatch::trayExists() const {
    if (trayAtom_ == XCB_ATOM_NONE) return false;
    auto* const x11 = connection();
    const std::unique_ptr<xcb_get_selection_owner_reply_t, Free> reply(
        xcb_get_selection_owner_reply(x11, xcb_get_selection_owner(x11, trayAtom_), nullptr));
    return reply && reply->owner != XCB_WINDOW_NONE;
}

void StatusBarWatch::askForHost() {
    if (!service_.connection().isConnected()) {
        if (trayExists()) finish();
        return;
    }
    auto question =
        QDBusMessage::createMethodCall(kService, kPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    question << kService << QStringLiteral("IsStatusNotifierHostRegistered");
    question.setAutoStartService(false);
    auto* call = new QDBusPendingCallWatcher(service_.connection().asyncCall(question, kPatience), &ask_);
    QObject::connect(call, &QDBusPendingCallWatcher::finished, &ask_, [this](QDBusPendingCallWatcher* done) {
        done->deleteLater();
        answered(*done);
    });
}

void StatusBarWatch::answered(QDBusPendingCallWatcher& call) {
    const QDBusPendingReply<QDBusVariant> reply = call;
    // Qt asks the same again and waits for it: whoever does not answer now must not be asked by Qt.
    if (reply.isError() && (reply.error().type() == QDBusError::NoReply || reply.error().type() == QDBusError::Timeout)) return;
    const bool hasHost = reply.isValid() && reply.value().variant().toBool();
    if (hasHost || trayExists()) QTimer::singleShot(0, &ask_, [this] { finish(); });  // outside the bus's own call
}

void StatusBarWatch::finish() {
    if (!appeared_) return;
    ask_.stop();
    QObject::disconnect(&service_, nullptr, nullptr, nullptr);
    service_.connection().disconnect(kService, kPath, kService, QStringLiteral("StatusNotifierHostRegistered"), &ask_, SLOT(start()));
    qApp->removeNativeEventFilter(this);
    std::exchange(appeared_, nullptr)();
}

bool StatusBarWatch::nativeEventFilter(const QByteArray& eventType, void* message, qintptr* /*result*/) {
    if (eventType != "xcb_generic_event_t") return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & 0x7f) != XCB_CLIENT_MESSAGE) return false;
    const auto* announcement = static_cast<const xcb_client_message_event_t*>(message);
    if (announcement->type == managerAtom_ && announcement->data.data32[1] == trayAtom_) ask_.start();
    return false;
}

}  // namespace halvane::qt
