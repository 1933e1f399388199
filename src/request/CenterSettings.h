#pragma once

#include "request/XMConfig.h"
#include "request/XMRequest.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace halvane::request {

/// Sees every response; an object that it answers replaces the response, an error that it leaves makes it a failure.
using XMResponseProcessBlock = std::function<Response(XMRequest&, const Response&, Failure&)>;
/// Sees every request after merging, just before it is sent, and may change it.
using XMRequestProcessBlock = std::function<void(XMRequest&)>;
/// Sees every failure; what it leaves there counts: another error, or none.
using XMErrorProcessBlock = std::function<void(XMRequest&, Failure&)>;

/// What a center holds for all requests. A value: a change makes a new one, so that a request sees one state of it.
struct CenterSettings {
    bool consoleLog = false;
    std::optional<std::string> generalServer;
    std::optional<util::Dictionary> generalUserInfo;
    std::shared_ptr<platform::DispatchQueue> callbackQueue;
    std::shared_ptr<XMEngine> engine;
    util::Dictionary generalParameters;
    platform::HttpHeaders generalHeaders;
    // Null where there is none. Shared, not copied: a hook may have a state of its own.
    std::shared_ptr<const XMResponseProcessBlock> responseProcessHandler;
    std::shared_ptr<const XMRequestProcessBlock> requestProcessHandler;
    std::shared_ptr<const XMErrorProcessBlock> errorProcessHandler;

    /// Entries of dictionaries are added, other values replaced; what is absent or empty changes nothing.
    void take(const XMConfig& config);

    /// Merges the general values into `request` and computes its `url` where it has none. No hook is called.
    void fillIn(XMRequest& request) const;
};

}  // namespace halvane::request
