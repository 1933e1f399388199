#pragma once

#include "service/APIClient.h"
#include "service/HVRequstHelper.h"
#include "session/HDCLUserConfig.h"
#include "support/FakeReachability.h"
#include "support/ManualMainLoop.h"
#include "support/MemoryDirectories.h"
#include "support/MemoryFileStore.h"
#include "support/MemoryPreferences.h"
#include "support/ScriptedTransport.h"

#include <memory>

namespace halvane::test {

/// The client of the company server with everything beneath it, over a scripted transport.
struct ScriptedClient {
    static constexpr const char* kBase = "http://company.test";

    std::shared_ptr<ManualMainLoop> mainLoop = std::make_shared<ManualMainLoop>();
    MemoryPreferences preferences;
    MemoryFileStore files;
    MemoryDirectories directories;
    ScriptedTransport transport;
    FakeReachability reachability;
    session::HDCLUserConfig user{preferences, files, directories};
    std::unique_ptr<service::APIClient> client = std::make_unique<service::APIClient>(
        service::APIClient::Collaborators{transport, mainLoop, user, directories, reachability, "Halvane/1.0", "zh-CN"});
    service::HVRequstHelper requests{*client, kBase};

    /// The exchange that was made last.
    ScriptedTransport::Exchange& last() { return *transport.exchanges.back(); }
};

}  // namespace halvane::test
