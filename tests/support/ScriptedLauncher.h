#pragma once

#include "platform/ProcessLauncher.h"

#include <map>
#include <string>
#include <vector>

namespace halvane::test {

/// Answers programs from a table and records each start as "path arg arg …". A path that is in
/// neither table cannot be started.
class ScriptedLauncher final : public platform::ProcessLauncher {
public:
    util::Result<util::Bytes> readOutput(const platform::ProcessRequest& request) override {
        record(request);
        const auto found = outputs.find(request.launchPath);
        if (found == outputs.end()) return util::fileError(2, "start " + request.launchPath);
        return found->second;
    }
    util::Result<void> launch(const platform::ProcessRequest& request, Termination onTermination) override {
        record(request);
        if (!outputs.contains(request.launchPath)) return util::fileError(2, "start " + request.launchPath);
        running.push_back(std::move(onTermination));
        return {};
    }

    /// Ends the oldest program that `launch` started.
    void terminateFirst(int exitStatus) {
        auto termination = std::move(running.front());
        running.erase(running.begin());
        termination(exitStatus);
    }

    std::map<std::string, util::Bytes> outputs;
    std::vector<Termination> running;
    std::vector<std::string> starts;
    std::vector<platform::ProcessRequest> requests;

private:
    void record(const platform::ProcessRequest& request) {
        std::string line = request.launchPath;
        for (const auto& argument : request.arguments) line += " " + argument;
        starts.push_back(line);
        requests.push_back(request);
    }
};

}  // namespace halvane::test
