#include "linux/PkexecPackageInstaller.h"

#include "linux/ChildStart.h"
#include "util/Text.h"
#include "util/UpdateError.h"

#include <fcntl.h>
#include <sys/wait.h>

#include <utility>

namespace halvane::linux {

namespace {

using util::UpdateError;
using util::updateError;

constexpr const char* kSubject = "install the update";

util::Error refusalOf(platform::OSStatus status) {
    switch (status) {
        case platform::kAuthorizationCanceled:
            return updateError(UpdateError::Dismissed, "the administrator's authorisation was not given");
        case platform::kAuthorizationDenied:
            return updateError(UpdateError::NotAllowed, "the policy lets nobody here install updates");
        case platform::kAuthorizationNotAvailable:
            return updateError(UpdateError::NoAuthority, "polkit is not available");
        default:
            return updateError(UpdateError::InstallationFailed, "the installing program could not be started");
    }
}

bool isReason(int exitCode) {
    return exitCode >= static_cast<int>(UpdateError::PackageSignature) && exitCode < static_cast<int>(UpdateError::Interrupted);
}

util::Result<void> outcomeOf(int waitStatus, std::string said) {
    if (WIFEXITED(waitStatus) && WEXITSTATUS(waitStatus) == 0) return {};
    said = util::trimmed(said);
    if (!WIFEXITED(waitStatus)) return updateError(UpdateError::Interrupted, "the installing program was ended by a signal");
    const int code = WEXITSTATUS(waitStatus);
    if (said.empty()) said = "the installing program ended with " + std::to_string(code);
    return updateError(isReason(code) ? static_cast<UpdateError>(code) : UpdateError::InstallationFailed, std::move(said));
}

}  // namespace

/// Everything that the worker needs, whether or not the installer is still there. Not the queues: one that is let go on its own
/// thread would wait for itself.
struct PkexecPackageInstaller::Work {
    std::filesystem::path program;
    PkexecChild pkexec;
    Descriptor stop;
    std::filesystem::path package;
    std::string signature;

    /// Absent: the installer has gone, and nobody waits for the outcome.
    [[nodiscard]] std::optional<util::Result<void>> run() const {
        const Descriptor input(::open(package.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
        if (!input) return updateError(UpdateError::PackageUnreachable, util::fileError(errno, "open " + package.string()).description);
        const auto started = pkexec.start(
            {.program = program.string(), .arguments = {signature}, .workingDirectory = "/", .input = input.get(), .stop = stop.get()});
        if (started.status != platform::kAuthorizationSuccess) return refusalOf(started.status);
        const auto said = Pipe::readToEnd(started.output.get(), kSubject, stop.get());
        if (!said && said.error().code == ECANCELED) return std::nullopt;
        return outcomeOf(ChildStart::awaitEnd(started.process), said ? *said : said.error().description);
    }
};

PkexecPackageInstaller::PkexecPackageInstaller(Collaborators collaborators) : to_(std::move(collaborators)) {
    if (auto pipe = Pipe::open(kSubject)) stop_ = std::make_shared<const Pipe>(*std::move(pipe));
}

PkexecPackageInstaller::~PkexecPackageInstaller() = default;

void PkexecPackageInstaller::install(const std::filesystem::path& package, const std::string& signature, Ended onEnd) {
    const int stop = stop_ ? ::fcntl(stop_->readEnd.get(), F_DUPFD_CLOEXEC, 0) : -1;
    const auto work = std::make_shared<const Work>(Work{to_.program, to_.pkexec, Descriptor(stop), package, signature});
    to_.worker->async([work, mainQueue = to_.mainQueue, alive = std::weak_ptr(alive_), onEnd = std::move(onEnd)] {
        const auto outcome = work->run();
        if (outcome)
            mainQueue->async([alive, onEnd, outcome = *outcome] {
                if (!alive.expired()) onEnd(outcome);
            });
    });
}

}  // namespace halvane::linux
