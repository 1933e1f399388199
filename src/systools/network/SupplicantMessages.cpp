#include "systools/network/SupplicantMessages.h"

#include "util/Text.h"

#include <unistd.h>

#include <string_view>

namespace halvane::systools {

SupplicantMessages::SupplicantMessages(GDBusConnection* bus) : bus_(G_DBUS_CONNECTION(g_object_ref(bus))), mayListen_(::geteuid() == 0) {
    subscription_ = g_dbus_connection_signal_subscribe(bus_, "fi.w1.wpa_supplicant1", "fi.w1.wpa_supplicant1.Interface", "EAP", nullptr,
                                                       nullptr, G_DBUS_SIGNAL_FLAGS_NONE, &SupplicantMessages::onEap, this, nullptr);
}

SupplicantMessages::~SupplicantMessages() {
    g_dbus_connection_signal_unsubscribe(bus_, subscription_);
    g_object_unref(bus_);
}

void SupplicantMessages::onEap(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant* parameters, void* self) {
    if (g_variant_is_of_type(parameters, G_VARIANT_TYPE("(ss)")) == FALSE) return;
    const char* status = nullptr;
    const char* detail = nullptr;
    g_variant_get(parameters, "(&s&s)", &status, &detail);
    auto& messages = *static_cast<SupplicantMessages*>(self);
    auto& reason = messages.reason_;
    messages.begun_ = true;
    const std::string_view about = status;
    const std::string text = util::withoutControls(detail);  // it comes from the other side of the cable
    if (about == "remote certificate verification" && text != "success") {
        reason = std::string("the network's authenticator is not the company's: ") + text;
    } else if (about == "remote TLS alert" && !reason) {
        reason = std::string("the network's authenticator did not take the certificate: ") + text;
    } else if (about == "local TLS alert" && !reason) {
        reason = std::string("the network's authenticator was not trusted: ") + text;
    }
}

}  // namespace halvane::systools
