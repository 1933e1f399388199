#pragma once

#include "platform/AuthorizationServices.h"
#include "platform/MainLoop.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace halvane::util {
class Log;
class NotificationCenter;
}  // namespace halvane::util

namespace halvane::tools {

/// Runs one program with the administrator's rights, its output readable through a pipe and its end noticed by looking.
///
/// One thread, that of the main loop. `launch` blocks while the person is asked. While the child runs, the timer keeps
/// the task alive; when a tick finds that the child has ended, the fields are set first, then
/// "STPrivilegedTaskDidTerminateNotification" is posted with the task as its object, then the handler is called. After
/// the end a task can be launched again.
class STPrivilegedTask : public std::enable_shared_from_this<STPrivilegedTask> {
public:
    using TerminationHandler = std::function<void(STPrivilegedTask&)>;

    static constexpr const char* kDidTerminateNotification = "STPrivilegedTaskDidTerminateNotification";

    struct Collaborators {
        platform::AuthorizationServices& authorization;
        platform::MainLoop& mainLoop;
        util::NotificationCenter& notifications;
        util::Log& log;
        std::function<std::string()> currentDirectory;  ///< of this process, at the moment of the call
    };
    struct Settings {
        std::optional<std::string> launchPath = {};
        std::vector<std::string> arguments = {};
        std::optional<std::string> currentDirectoryPath = {};  ///< else the process's current directory
    };

    /// The collaborators must outlive the task.
    static std::shared_ptr<STPrivilegedTask> initWithLaunchPath(const Collaborators& collaborators, Settings settings);

    /// Launches, waits for the end and answers the task, whatever the launch answered. With an `authorization` of the
    /// caller's, that one is used.
    static std::shared_ptr<STPrivilegedTask> launchedPrivilegedTaskWithLaunchPath(
        const Collaborators& collaborators, Settings settings, std::optional<platform::AuthorizationRef> authorization = std::nullopt);

    [[nodiscard]] static bool authorizationFunctionAvailable(const platform::AuthorizationServices& authorization) {
        return authorization.canExecuteWithPrivileges();
    }

    /// Asks for authorisation and starts the program. 0 also for a task that is running: nothing is asked or started then.
    [[nodiscard]] platform::OSStatus launch();
    /// `authorization` stays the caller's.
    [[nodiscard]] platform::OSStatus launchWithAuthorization(platform::AuthorizationRef authorization);

    /// Keeps asking until the child has ended, without a pause. Posts nothing and calls no handler.
    void waitUntilExit();
    /// Does nothing: what runs with other rights than ours is not ours to stop.
    void terminate() {}

    /// "<STPrivilegedTask: ADDRESS> PATH 'ARGUMENT' …"
    [[nodiscard]] std::string description() const;

    [[nodiscard]] const std::shared_ptr<platform::OutputFileHandle>& outputFileHandle() const { return outputFileHandle_; }
    [[nodiscard]] bool isRunning() const { return isRunning_; }
    [[nodiscard]] std::int32_t processIdentifier() const { return processIdentifier_; }
    /// The exit code; 0 for a child that a signal ended.
    [[nodiscard]] std::int32_t terminationStatus() const { return terminationStatus_; }

    std::vector<std::string> arguments;
    std::string currentDirectoryPath;
    std::optional<std::string> launchPath;
    TerminationHandler terminationHandler;

private:
    STPrivilegedTask(const Collaborators& collaborators, Settings settings);

    [[nodiscard]] std::string baseDescription() const;
    bool refuseSecondLaunch() const;
    bool refuseWithoutAuthorization() const;
    void checkTaskStatus();
    void ended(int waitStatus);

    const Collaborators to_;
    std::unique_ptr<platform::MainLoop::Timer> checkStatusTimer_;
    bool isRunning_ = false;
    std::int32_t processIdentifier_ = 0;
    std::int32_t terminationStatus_ = 0;
    std::shared_ptr<platform::OutputFileHandle> outputFileHandle_;
};

}  // namespace halvane::tools
