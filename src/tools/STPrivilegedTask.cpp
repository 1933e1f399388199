#include "tools/STPrivilegedTask.h"

#include "util/Log.h"
#include "util/NotificationCenter.h"
#include "util/Value.h"

#include <fmt/format.h>

#include <chrono>
#include <utility>

namespace halvane::tools {

namespace {

using platform::OSStatus;

constexpr std::chrono::milliseconds kCheckInterval{50};
constexpr const char* kAdministratorRight = "system.privilege.admin";
constexpr std::uint32_t kAskNow =
    platform::kAuthorizationInteractionAllowed | platform::kAuthorizationExtendRights | platform::kAuthorizationPreAuthorize;

/// As the system takes it: up to its first NUL.
std::string systemForm(const std::string& text) { return text.c_str(); }

constexpr int exitCodeOf(int waitStatus) { return (waitStatus >> 8) & 0xFF; }

}  // namespace

STPrivilegedTask::STPrivilegedTask(const Collaborators& collaborators, Settings settings)
    : arguments(std::move(settings.arguments)),
      currentDirectoryPath(settings.currentDirectoryPath ? *std::move(settings.currentDirectoryPath) : collaborators.currentDirectory()),
      launchPath(std::move(settings.launchPath)),
      to_(collaborators) {}

std::shared_ptr<STPrivilegedTask> STPrivilegedTask::initWithLaunchPath(const Collaborators& collaborators, Settings settings) {
    return std::shared_ptr<STPrivilegedTask>(new STPrivilegedTask(collaborators, std::move(settings)));
}

std::shared_ptr<STPrivilegedTask> STPrivilegedTask::launchedPrivilegedTaskWithLaunchPath(
    const Collaborators& collaborators, Settings settings, std::optional<platform::AuthorizationRef> authorization) {
    auto task = initWithLaunchPath(collaborators, std::move(settings));
    static_cast<void>(authorization ? task->launchWithAuthorization(*authorization) : task->launch());
    task->waitUntilExit();
    return task;
}

bool STPrivilegedTask::refuseSecondLaunch() const {
    if (isRunning_) to_.log.write("Task already running: " + description());
    return isRunning_;
}

bool STPrivilegedTask::refuseWithoutAuthorization() const {
    const bool available = authorizationFunctionAvailable(to_.authorization);
    if (!available) to_.log.write("AuthorizationExecuteWithPrivileges() function not available on this system");
    return !available;
}

OSStatus STPrivilegedTask::launch() {
    if (refuseSecondLaunch()) return platform::kAuthorizationSuccess;
    if (refuseWithoutAuthorization()) return platform::kAuthorizationNotAvailable;
    const auto created = to_.authorization.create();
    if (created.status != platform::kAuthorizationSuccess) return created.status;
    const platform::AuthorizationRight right{.name = kAdministratorRight, .value = systemForm(launchPath.value_or(""))};
    // What was not granted is not freed: callers have always found a refused authorisation's reference still taken.
    if (const OSStatus status = to_.authorization.copyRights(created.authorization, {right}, kAskNow);
        status != platform::kAuthorizationSuccess)
        return status;
    const OSStatus status = launchWithAuthorization(created.authorization);
    to_.authorization.free(created.authorization);
    return status;
}

OSStatus STPrivilegedTask::launchWithAuthorization(platform::AuthorizationRef authorization) {
    if (refuseSecondLaunch()) return platform::kAuthorizationSuccess;
    if (refuseWithoutAuthorization()) return platform::kAuthorizationNotAvailable;
    platform::AuthorizationServices::Tool tool{.path = systemForm(launchPath.value_or("")), .workingDirectory = currentDirectoryPath};
    for (const auto& argument : arguments) tool.arguments.push_back(systemForm(argument));
    auto execution = to_.authorization.executeWithPrivileges(authorization, tool);
    if (execution.status != platform::kAuthorizationSuccess) return execution.status;

    isRunning_ = true;
    outputFileHandle_ = std::move(execution.output);
    processIdentifier_ = execution.processIdentifier;
    checkStatusTimer_ = to_.mainLoop.every(kCheckInterval, [self = shared_from_this()] { self->checkTaskStatus(); });
    return execution.status;
}

void STPrivilegedTask::checkTaskStatus() {
    const auto waitStatus = to_.authorization.collect(processIdentifier_);
    if (!waitStatus) return;
    // The timer's block, which runs now, may hold the last reference.
    const auto self = shared_from_this();
    ended(*waitStatus);
    to_.notifications.post(kDidTerminateNotification, self);
    // A handler may take itself off.
    if (const auto handler = terminationHandler) handler(*self);
}

void STPrivilegedTask::ended(int waitStatus) {
    isRunning_ = false;
    terminationStatus_ = exitCodeOf(waitStatus);
    checkStatusTimer_.reset();
}

void STPrivilegedTask::waitUntilExit() {
    if (!isRunning_) {
        to_.log.write("Task " + baseDescription() + " is not running");
        return;
    }
    checkStatusTimer_->stop();
    std::optional<int> waitStatus;
    while (!waitStatus) waitStatus = to_.authorization.collect(processIdentifier_);
    const auto self = shared_from_this();
    ended(*waitStatus);
}

std::string STPrivilegedTask::baseDescription() const { return fmt::format("<STPrivilegedTask: {}>", fmt::ptr(this)); }

std::string STPrivilegedTask::description() const {
    if (!launchPath) return baseDescription() + " " + util::printed(launchPath);
    std::string line = *launchPath;
    for (const auto& argument : arguments) line += " '" + argument + "'";
    return baseDescription() + " " + line;
}

}  // namespace halvane::tools
