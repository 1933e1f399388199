#include "systools/network/Activation.h"

#include "systools/Tool.h"
#include "systools/network/SupplicantMessages.h"

namespace halvane::systools {

namespace {

struct Failure {
    NMDeviceStateReason reason;
    ExitCode code;
    const char* text;
};

constexpr const char* kNotLetIn = "we were not let in: the certificate was refused, the network is not the company's, or nobody answered";

/// What NetworkManager gives as reasons, as far as they can happen here. It calls every refusal missing secrets.
constexpr Failure kFailures[] = {
    {NM_DEVICE_STATE_REASON_NO_SECRETS, kRefused, kNotLetIn},
    {NM_DEVICE_STATE_REASON_SUPPLICANT_DISCONNECT, kRefused, kNotLetIn},
    {NM_DEVICE_STATE_REASON_SUPPLICANT_FAILED, kFailure, "the supplicant has failed"},
    {NM_DEVICE_STATE_REASON_SUPPLICANT_CONFIG_FAILED, kRefused, "the certificate's file cannot be used"},
    {NM_DEVICE_STATE_REASON_SUPPLICANT_TIMEOUT, kTimedOut, "the network's authenticator does not answer"},
    {NM_DEVICE_STATE_REASON_SSID_NOT_FOUND, kNoNetwork, "the network is out of reach"},
    {NM_DEVICE_STATE_REASON_CARRIER, kNoDevice, "the cable was pulled out"},
    {NM_DEVICE_STATE_REASON_IP_CONFIG_UNAVAILABLE, kTimedOut, "it let us in, but gives no address"},
    {NM_DEVICE_STATE_REASON_DHCP_FAILED, kTimedOut, "it let us in, but gives no address"},
    {NM_DEVICE_STATE_REASON_DHCP_ERROR, kTimedOut, "it let us in, but gives no address"},
    {NM_DEVICE_STATE_REASON_DHCP_START_FAILED, kTimedOut, "it let us in, but gives no address"},
};

}  // namespace

util::Error networkManagerError(const linux::GioCalls& calls, const std::string& subject) {
    const bool forbidden = calls.endedWith(NM_MANAGER_ERROR, NM_MANAGER_ERROR_PERMISSION_DENIED) ||
                           calls.endedWith(NM_SETTINGS_ERROR, NM_SETTINGS_ERROR_PERMISSION_DENIED) ||
                           calls.endedWith(G_DBUS_ERROR, G_DBUS_ERROR_ACCESS_DENIED);
    const bool late = calls.endedWith(G_IO_ERROR, G_IO_ERROR_CANCELLED) || calls.endedWith(G_DBUS_ERROR, G_DBUS_ERROR_NO_REPLY) ||
                      calls.endedWith(G_DBUS_ERROR, G_DBUS_ERROR_TIMEOUT);
    return toolError(forbidden ? kForbidden : late ? kTimedOut : kFailure, "NetworkManager did not " + subject + ": " + calls.whatFailed());
}

Activation::Activation(NMClient& client, NMConnection& connection, NMDevice& device)
    : client_(client), connection_(NM_CONNECTION(g_object_ref(&connection))), device_(NM_DEVICE(g_object_ref(&device))) {
    handler_ = g_signal_connect(device_.get(), "state-changed", G_CALLBACK(&Activation::onStateChanged), this);
}

Activation::~Activation() { g_signal_handler_disconnect(device_.get(), handler_); }

util::Result<void> Activation::start(linux::GioCalls& calls) {
    const auto result = calls.wait([this](GCancellable* cancellable, GAsyncReadyCallback callback, void* data) {
        nm_client_activate_connection_async(&client_, connection_.get(), device_.get(), nullptr, cancellable, callback, data);
    });
    active_.reset(nm_client_activate_connection_finish(&client_, result.get(), calls.error()));
    if (!active_) return networkManagerError(calls, std::string("join ") + nm_connection_get_id(connection_.get()));
    return {};
}

void Activation::onStateChanged(NMDevice*, unsigned now, unsigned, unsigned reason, void* self) {
    auto& activation = *static_cast<Activation*>(self);
    // What the device does next is another connection's.
    if (activation.active_ && activation.ended()) return;
    // What the device did before ends first; only what follows is ours.
    if (now == NM_DEVICE_STATE_PREPARE) activation.failure_ = NM_DEVICE_STATE_REASON_NONE;
    if (now == NM_DEVICE_STATE_IP_CONFIG) activation.authenticated_ = true;
    if (now == NM_DEVICE_STATE_FAILED || now == NM_DEVICE_STATE_UNAVAILABLE) activation.failure_ = static_cast<NMDeviceStateReason>(reason);
}

NMActiveConnectionState Activation::state() const {
    // One that the client has let go of does not change any more.
    return nm_object_get_client(NM_OBJECT(active_.get())) == nullptr ? NM_ACTIVE_CONNECTION_STATE_DEACTIVATED
                                                                     : nm_active_connection_get_state(active_.get());
}

bool Activation::ended() const {
    const auto now = state();
    return now == NM_ACTIVE_CONNECTION_STATE_ACTIVATED || now == NM_ACTIVE_CONNECTION_STATE_DEACTIVATED;
}

std::optional<util::Error> Activation::outcome(const SupplicantMessages* heard) const {
    const auto now = state();
    if (now == NM_ACTIVE_CONNECTION_STATE_ACTIVATED) return std::nullopt;
    if (now != NM_ACTIVE_CONNECTION_STATE_DEACTIVATED) {
        return toolError(kTimedOut, authenticated_ ? "it let us in, but gives no address yet" : "the network does not answer");
    }
    for (const auto& failure : kFailures) {
        if (failure.reason != failure_) continue;
        // Only where there was a conversation the supplicant has something to say of it.
        if (failure.text != kNotLetIn || heard == nullptr) return toolError(failure.code, failure.text);
        if (heard->onlySilence()) return toolError(kTimedOut, "the network's authenticator does not answer");
        return toolError(kRefused, heard->reason().value_or(failure.text));
    }
    return toolError(kFailure, "NetworkManager gave up (reason " + std::to_string(failure_) + ")");
}

}  // namespace halvane::systools
