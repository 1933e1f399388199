#pragma once

#include "platform/DispatchQueue.h"
#include "platform/HttpMessage.h"
#include "util/Value.h"

#include <memory>
#include <optional>
#include <string>

namespace halvane::request {

class XMEngine;

/// What `XMCenter::setupConfig` is told. What is absent or empty leaves the center as it is; only `consoleLog` always counts.
struct XMConfig {
    bool consoleLog = false;
    std::optional<std::string> generalServer;
    util::Dictionary generalParameters;
    platform::HttpHeaders generalHeaders;
    std::optional<util::Dictionary> generalUserInfo;
    std::shared_ptr<platform::DispatchQueue> callbackQueue;  ///< kept by the caller for as long as results are to arrive on it
    std::shared_ptr<XMEngine> engine;
};

}  // namespace halvane::request
