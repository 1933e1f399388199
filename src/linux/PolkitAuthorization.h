#pragma once

#include "linux/PkexecChild.h"
#include "linux/ToolRoot.h"
#include "platform/AuthorizationServices.h"

#include <atomic>

namespace halvane::util {
class Log;
}

namespace halvane::linux {

/// The administrator's rights by polkit and pkexec. Rights are checked without asking; the person is asked once, by
/// pkexec, when the program is to be executed, since only there the question can name it. The installed `profiles` has
/// an action of its own, whose grant holds for some minutes; every other program is asked for each time.
///
/// An authorisation holds nothing here: polkit keeps what was granted. Any thread.
class PolkitAuthorization final : public platform::AuthorizationServices {
public:
    /// `tools`: the installed ones. What runs as the administrator is never chosen by an environment.
    PolkitAuthorization(ToolRoot tools, util::Log& log, PkexecChild pkexec = PkexecChild());

    [[nodiscard]] bool canExecuteWithPrivileges() const override { return canExecute_; }
    Created create() override;
    platform::OSStatus copyRights(platform::AuthorizationRef authorization, const std::vector<platform::AuthorizationRight>& rights,
                                  std::uint32_t flags) override;
    void free(platform::AuthorizationRef /*authorization*/) override {}
    Execution executeWithPrivileges(platform::AuthorizationRef authorization, const Tool& tool) override;
    std::optional<int> collect(std::int32_t processIdentifier) override;

private:
    const ToolRoot tools_;
    util::Log& log_;
    const PkexecChild pkexec_;
    const bool canExecute_;
    std::atomic<platform::AuthorizationRef> last_{0};
};

}  // namespace halvane::linux
