#pragma once

#include "platform/DispatchQueue.h"

#include <memory>
#include <optional>
#include <string>

namespace halvane::device {

class HVDeviceInfoHelper;

/// What a locked computer loses: the company's certificate, and with it the network that it opens.
///
/// Main thread. The tools that do it take their time, so they run on `toolQueue`, one after the other and after
/// whatever was handed in before, such as the installation of that certificate. The objects must outlive what
/// waits there.
class CompanyAccess {
public:
    struct Collaborators {
        platform::DispatchQueue& toolQueue;  ///< serial
        const HVDeviceInfoHelper& device;
    };

    explicit CompanyAccess(Collaborators collaborators);

    /// Deletes the certificate of that name, then switches the network off and on, so that it is joined anew
    /// without it. `certificateName` as the profile has it: every ".pfx" in it falls away, and when nothing is
    /// left nothing is deleted. Of calls for one name that wait, the last one acts.
    void revoke(const std::optional<std::string>& certificateName);

private:
    class Waiting;

    Collaborators to_;
    std::shared_ptr<Waiting> waiting_;
};

}  // namespace halvane::device
