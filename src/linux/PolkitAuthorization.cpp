#include "linux/PolkitAuthorization.h"

#include "linux/Pipe.h"
#include "util/Log.h"

#include <sys/wait.h>

#include <cerrno>
#include <utility>

namespace halvane::linux {

namespace {

using platform::OSStatus;

constexpr const char* kProfiles = "/usr/bin/profiles";
constexpr const char* kProfilesAction = "com.halvane.profiles";

class PipeHandle final : public platform::OutputFileHandle {
public:
    explicit PipeHandle(Descriptor descriptor) : descriptor_(std::move(descriptor)) {}

    [[nodiscard]] int fileDescriptor() const override { return descriptor_.get(); }
    util::Result<util::Bytes> readDataToEndOfFile() override { return Pipe::readToEnd(descriptor_.get(), "read a task's output"); }

private:
    const Descriptor descriptor_;
};

}  // namespace

PolkitAuthorization::PolkitAuthorization(ToolRoot tools, util::Log& log, PkexecChild pkexec)
    : tools_(std::move(tools)), log_(log), pkexec_(std::move(pkexec)), canExecute_(pkexec_.isInstalled()) {}

platform::AuthorizationServices::Created PolkitAuthorization::create() { return {.authorization = ++last_}; }

OSStatus PolkitAuthorization::copyRights(platform::AuthorizationRef, const std::vector<platform::AuthorizationRight>& rights,
                                         std::uint32_t) {
    for (const auto& right : rights) {
        auto answer = PolkitAuthority::Answer::UnknownAction;
        if (right.value == kProfiles) answer = pkexec_.authority().check(kProfilesAction);
        if (answer == PolkitAuthority::Answer::UnknownAction) answer = pkexec_.authority().check(PolkitAuthority::kExecute);
        if (answer == PolkitAuthority::Answer::Possible) continue;
        const bool refused = answer == PolkitAuthority::Answer::Refused;
        log_.write(refused ? "polkit: the policy lets nobody here run " + right.value + " as the administrator" : "polkit: not available");
        return refused ? platform::kAuthorizationDenied : platform::kAuthorizationNotAvailable;
    }
    return platform::kAuthorizationSuccess;
}

platform::AuthorizationServices::Execution PolkitAuthorization::executeWithPrivileges(platform::AuthorizationRef, const Tool& tool) {
    auto started =
        pkexec_.start({.program = tools_.programFor(tool.path), .arguments = tool.arguments, .workingDirectory = tool.workingDirectory});
    if (started.status != platform::kAuthorizationSuccess) return {.status = started.status};
    return {.processIdentifier = started.process, .output = std::make_shared<PipeHandle>(std::move(started.output))};
}

std::optional<int> PolkitAuthorization::collect(std::int32_t processIdentifier) {
    int status = 0;
    const pid_t answer = ::waitpid(processIdentifier, &status, WNOHANG);
    if (answer == 0 || (answer < 0 && errno == EINTR)) return std::nullopt;
    return answer < 0 ? 0 : status;
}

}  // namespace halvane::linux
