#include "systools/network/SupplicantMessages.h"

#include <string_view>

namespace halvane::systools {

SupplicantMessages::SupplicantMessages(GDBusConnection* bus) : bus_(G_DBUS_CONNECTION(g_object_ref(bus))) {
    subscription_ = g_dbus_connection_signal_subscribe(bus_, nullptr, "fi.w1.wpa_supplicant1.Interface", "EAP", nullptr, nullptr,
                                                       G_DBUS_SIGNAL_FLAGS_NONE, &SupplicantMessages::onEap, this, nullptr);
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
    auto& reason = static_cast<SupplicantMessages*>(self)->reason_;
    const std::string_view about = status;
    if (about == "remote certificate verification" && std::string_view(detail) != "success") {
        reason = std::string("the network's authenticator is not the company's: ") + detail;
    } else if (about == "remote TLS alert" && !reason) {
        reason = std::string("the network's authenticator did not take the certificate: ") + detail;
    } else if (about == "local TLS alert" && !reason) {
        reason = std::string("the network's authenticator was not trusted: ") + detail;
    }
}

}  // namespace halvane::systools
