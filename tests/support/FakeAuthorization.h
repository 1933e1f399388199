#pragma once

#include "platform/AuthorizationServices.h"
#include "support/ManualMainLoop.h"
#include "support/RecordingLog.h"
#include "tools/STPrivilegedTask.h"
#include "util/NotificationCenter.h"

#include <string>
#include <vector>

namespace halvane::test {

/// An administrator who answers what the test wants, and a child that ends when the test says.
class FakeAuthorization final : public platform::AuthorizationServices {
public:
    class NoOutput final : public platform::OutputFileHandle {
    public:
        [[nodiscard]] int fileDescriptor() const override { return -1; }
        util::Result<util::Bytes> readDataToEndOfFile() override { return util::Bytes(); }
    };

    [[nodiscard]] bool canExecuteWithPrivileges() const override { return available; }
    Created create() override {
        calls.emplace_back("create");
        return {createStatus, 7};
    }
    platform::OSStatus copyRights(platform::AuthorizationRef authorization, const std::vector<platform::AuthorizationRight>& rights,
                                  std::uint32_t flags) override {
        std::string call = "copyRights " + std::to_string(authorization) + " flags " + std::to_string(flags);
        for (const auto& right : rights) call += " " + right.name + "=" + right.value;
        calls.push_back(call);
        return rightsStatus;
    }
    void free(platform::AuthorizationRef authorization) override { calls.push_back("free " + std::to_string(authorization)); }
    Execution executeWithPrivileges(platform::AuthorizationRef authorization, const Tool& tool) override {
        std::string call = "execute " + std::to_string(authorization) + " " + tool.path;
        for (const auto& argument : tool.arguments) call += " [" + argument + "]";
        calls.push_back(call + " in " + tool.workingDirectory);
        if (executeStatus != 0) return {.status = executeStatus};
        return {.processIdentifier = 4711, .output = output};
    }
    std::optional<int> collect(std::int32_t processIdentifier) override {
        ++collections;
        lastCollected = processIdentifier;
        // The child of a test that waits ends after some looks.
        return endsAfter > 0 && collections >= endsAfter ? std::optional(waitStatus) : std::nullopt;
    }

    bool available = true;
    platform::OSStatus createStatus = 0;
    platform::OSStatus rightsStatus = 0;
    platform::OSStatus executeStatus = 0;
    std::shared_ptr<platform::OutputFileHandle> output = std::make_shared<NoOutput>();
    int waitStatus = 0;
    int endsAfter = 0;  ///< looks; 0: never
    int collections = 0;
    std::int32_t lastCollected = 0;
    std::vector<std::string> calls;
};

/// All that a privileged task works with.
struct FakeAdministrator {
    FakeAuthorization authorization;
    ManualMainLoop mainLoop;
    util::NotificationCenter notifications;
    RecordingLog log;
    tools::STPrivilegedTask::Collaborators collaborators{authorization, mainLoop, notifications, log, [] { return std::string("/here"); }};
};

}  // namespace halvane::test
