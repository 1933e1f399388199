#pragma once

#include "platform/HttpSession.h"
#include "request/XMRequest.h"

#include <memory>

namespace halvane::request {

/// The request that a task of the engine serves; the task keeps it alive. Tied to it as the task is made, so that no walk
/// over tasks ever meets one without. Null for a task of somebody else.
inline std::shared_ptr<XMRequest> bindedRequest(const platform::HttpTask& task) {
    return std::static_pointer_cast<XMRequest>(task.context());
}

}  // namespace halvane::request
