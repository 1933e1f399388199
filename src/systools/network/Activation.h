#pragma once

#include "linux/GioCalls.h"
#include "systools/network/Libnm.h"
#include "systools/network/NetworkService.h"

#include <optional>

namespace halvane::systools {

class SupplicantMessages;

/// One connection being joined on one device, from the order to its outcome. One thread, that of the client.
class Activation {
public:
    Activation(NMClient& client, NMConnection& connection, NMDevice& device);
    ~Activation();
    Activation(const Activation&) = delete;
    Activation& operator=(const Activation&) = delete;

    /// Gives the order, which ends what the device did before. Error: it was not taken.
    util::Result<void> start(linux::GioCalls& calls);

    [[nodiscard]] bool ended() const;
    /// Absent: joined. `heard`: what the supplicant said, where this is the only one under way.
    [[nodiscard]] std::optional<util::Error> outcome(const SupplicantMessages* heard) const;

private:
    static void onStateChanged(NMDevice* device, unsigned now, unsigned before, unsigned reason, void* self);
    [[nodiscard]] NMActiveConnectionState state() const;

    NMClient& client_;
    const linux::GObjectPointer<NMConnection> connection_;
    const linux::GObjectPointer<NMDevice> device_;
    unsigned long handler_ = 0;
    linux::GObjectPointer<NMActiveConnection> active_;
    NMDeviceStateReason failure_ = NM_DEVICE_STATE_REASON_NONE;
    bool authenticated_ = false;
};

/// The error for a call to NetworkManager that failed: what it says, and whether the system's policy was the reason.
util::Error networkManagerError(const linux::GioCalls& calls, const std::string& subject);

}  // namespace halvane::systools
