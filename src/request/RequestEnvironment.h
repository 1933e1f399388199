#pragma once

#include "platform/DispatchQueue.h"
#include "platform/HttpSession.h"
#include "platform/Reachability.h"
#include "util/Log.h"

#include <memory>

namespace halvane::request {

/// The name of the queue on which results arrive.
inline constexpr const char* kCompletionQueueName = "com.halvane.request.completion.callback.queue";

/// What engines and centers need of the outside. A value; who makes an engine or a center of it shares what it points to.
/// Its queues must bear being destroyed by a block of their own: the last to hold a center may be a result that is told.
struct RequestEnvironment {
    std::shared_ptr<platform::HttpTransport> transport;
    std::shared_ptr<platform::DispatchQueue> completionQueue;  ///< concurrent, one for the process
    std::shared_ptr<platform::DispatchQueue> backgroundQueue;  ///< where retries wait
    std::shared_ptr<platform::Reachability> reachability;      ///< the shared monitor; null: the status stays unknown
    std::shared_ptr<util::Log> log;                            ///< for the console log; null: nowhere
    platform::HttpHeaders defaultHeaders;                      ///< of every request: language, agent

    /// The one of the process, behind `XMEngine::sharedEngine` and `XMCenter::defaultCenter`. Throws std::logic_error while
    /// there is none. Any thread.
    static const RequestEnvironment& shared();
    /// Once, at the start of the program; kept for as long as it runs. A second one is std::logic_error.
    static void setShared(RequestEnvironment environment);
};

}  // namespace halvane::request
