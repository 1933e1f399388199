#include "linux/FreedesktopNotifications.h"

#include "linux/GioCalls.h"
#include "util/Error.h"
#include "util/Result.h"
#include "util/SessionBus.h"
#include "util/Text.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace halvane::linux {

namespace {

using Notice = platform::DesktopNotifications::Notice;
using Urgency = platform::DesktopNotifications::Urgency;

constexpr const char* kService = "org.freedesktop.Notifications";
constexpr const char* kPath = "/org/freedesktop/Notifications";
constexpr const char* kProgram = "Halvane";
constexpr const char* kDesktopEntry = "com.halvane.Halvane";
constexpr std::int32_t kAsLongAsTheDesktopLikes = -1;

guint8 levelOf(Urgency urgency) {
    switch (urgency) {
        case Urgency::Normal:
            return 1;
        case Urgency::Critical:
            return 2;
    }
    return 1;
}

/// Without markup a service shows the text as it is, with it a bare "<" would begin a tag.
std::string bodyFor(bool markup, const std::string& text) {
    if (!markup) return text;
    return util::replaced(util::replaced(util::replaced(text, "&", "&amp;"), "<", "&lt;"), ">", "&gt;");
}

}  // namespace

/// The desktop's service as this program knows it. One thread at a time.
class FreedesktopNotifications::Service {
public:
    Service(util::Log& log, std::chrono::milliseconds deadline) : log_(log), deadline_(deadline) {}

    void show(const Notice& notice) {
        const auto shown = tryToShow(notice);
        if (!shown && !std::exchange(reported_, true)) log_.write("notifications: nothing is shown: " + shown.error().description);
    }

private:
    util::Result<void> tryToShow(const Notice& notice) {
        GioCalls calls(deadline_);
        if (auto connected = connect(calls); !connected) return connected;
        const auto markup = understandsMarkup(calls);
        if (!markup) return markup.error();
        const auto reply = call(calls, "Notify", arguments(notice, *markup), "(u)");
        if (!reply) return reply.error();
        g_variant_get(reply->get(), "(u)", &shown_[notice.subject]);
        return {};
    }

    util::Result<void> connect(GioCalls& calls) {
        if (bus_ && g_dbus_connection_is_closed(bus_.get()) == FALSE) return {};
        bus_.reset();
        shown_.clear();
        const auto address = util::sessionBusAddress();
        if (!address) return util::serviceError("there is no session bus");
        const auto result = calls.wait([&address](GCancellable* cancellable, GAsyncReadyCallback callback, void* data) {
            constexpr auto kAsClient = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                                         G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
            g_dbus_connection_new_for_address(address->c_str(), kAsClient, nullptr, cancellable, callback, data);
        });
        bus_.reset(g_dbus_connection_new_for_address_finish(result.get(), calls.error()));
        if (!bus_) return util::serviceError("the session bus cannot be reached: " + calls.whatFailed());
        return {};
    }

    util::Result<bool> understandsMarkup(GioCalls& calls) {
        const auto reply = call(calls, "GetCapabilities", nullptr, "(as)");
        if (!reply) return reply.error();
        const VariantPointer names(g_variant_get_child_value(reply->get(), 0));
        const std::unique_ptr<const char*, decltype(&g_free)> list(g_variant_get_strv(names.get(), nullptr), &g_free);
        return g_strv_contains(list.get(), "body-markup") != FALSE;
    }

    GVariant* arguments(const Notice& notice, bool markup) const {
        const auto replaced = shown_.find(notice.subject);
        GVariantBuilder hints;
        g_variant_builder_init(&hints, G_VARIANT_TYPE_VARDICT);
        g_variant_builder_add(&hints, "{sv}", "urgency", g_variant_new_byte(levelOf(notice.urgency)));
        g_variant_builder_add(&hints, "{sv}", "desktop-entry", g_variant_new_string(kDesktopEntry));
        return g_variant_new("(susssasa{sv}i)", kProgram, replaced == shown_.end() ? 0U : replaced->second, kDesktopEntry,
                             notice.summary.c_str(), bodyFor(markup, notice.body).c_str(), nullptr, &hints, kAsLongAsTheDesktopLikes);
    }

    /// A reply of another type is an error.
    util::Result<VariantPointer> call(GioCalls& calls, const char* method, GVariant* arguments, const char* replyType) const {
        const auto result = calls.wait([&](GCancellable* cancellable, GAsyncReadyCallback callback, void* data) {
            g_dbus_connection_call(bus_.get(), kService, kPath, kService, method, arguments, G_VARIANT_TYPE(replyType),
                                   G_DBUS_CALL_FLAGS_NONE, -1, cancellable, callback, data);
        });
        VariantPointer reply(g_dbus_connection_call_finish(bus_.get(), result.get(), calls.error()));
        if (!reply) return util::serviceError(std::string("the desktop's service, asked for ") + method + ": " + calls.whatFailed());
        return reply;
    }

    util::Log& log_;
    const std::chrono::milliseconds deadline_;
    GObjectPointer<GDBusConnection> bus_;
    std::map<std::string, guint32> shown_;  // what the service calls the last notice of each subject
    bool reported_ = false;
};

FreedesktopNotifications::FreedesktopNotifications(std::shared_ptr<platform::DispatchQueue> queue, util::Log& log,
                                                   std::chrono::milliseconds deadline)
    : queue_(std::move(queue)), service_(std::make_shared<Service>(log, deadline)) {}

void FreedesktopNotifications::show(const Notice& notice) {
    queue_->async([service = service_, notice] { service->show(notice); });
}

}  // namespace halvane::linux
