#pragma once

#include "platform/HttpSession.h"
#include "request/RequestEnvironment.h"
#include "request/SecurityPolicy.h"
#include "request/XMRequest.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace halvane::request {

class RequestSerializers;
class ResponseSerializers;

/// Turns a prepared request into a transport task and reports its one result. It has two sessions, each with connections of
/// its own: an ordinary one and one with certificate pinning, which serves the hosts of `addSSLPinningURL`. Both are made
/// when they are first needed; a new engine costs neither thread nor connection.
///
/// Any thread. Completions arrive on the environment's completion queue, several at once, never inside `sendRequest`,
/// exactly one for each task and each request that could not be built. Destroying the engine cancels its tasks; their
/// completions still arrive on that queue, with Cancelled.
class XMEngine {
public:
    /// (response, error): the response may stand beside an error, which then makes it a failure all the same.
    using Completion = std::function<void(Response, Failure)>;

    explicit XMEngine(RequestEnvironment environment);
    ~XMEngine();
    XMEngine(const XMEngine&) = delete;
    XMEngine& operator=(const XMEngine&) = delete;

    /// A new one in the process's environment.
    static std::shared_ptr<XMEngine> engine();
    /// The one that centers use unless they are told otherwise. Made by the first call, never destroyed.
    static const std::shared_ptr<XMEngine>& sharedEngine();

    /// What happens at the start of the program, before any engine exists, and is the only thing that happens uncalled:
    /// the shared reachability monitor begins to watch.
    static void load(platform::Reachability& sharedMonitor) { sharedMonitor.startMonitoring(); }

    /// By the request's type: a data task, an upload (always POST) or a download (always GET, without parameters). Another
    /// type sends nothing and never completes. The request's identifier stands when this returns. A request that cannot be
    /// built (an address that is none, a method or request serializer that there is not, parameters that do not encode)
    /// completes with an error and gets no identifier.
    void sendRequest(const std::shared_ptr<XMRequest>& request, Completion completion);

    /// The request that runs or waits under `identifier`, or null. Cancelling ends it with Cancelled.
    std::shared_ptr<XMRequest> cancelRequestByIdentifier(const std::string& identifier);
    [[nodiscard]] std::shared_ptr<XMRequest> getRequestByIdentifier(const std::string& identifier) const;

    /// How many tasks of each session run at once, 5 at first. Values below 1 are 1. Makes both sessions.
    void setConcurrentOperationCount(std::int64_t count);

    [[nodiscard]] XMNetworkStatus reachabilityStatus() const;

    // The three below count for connections that are opened from then on: call them before the first request.

    /// From now on, requests to any host of the address's root domain ("https://a.b.c" registers b.c) use the pinned
    /// session. Other addresses than of https are ignored. A name beyond ASCII has to be given in its ASCII form, as every
    /// address that can be sent has it.
    void addSSLPinningURL(const std::string& url);
    /// DER. A server of the pinned session must have this certificate, or one that it has signed, or another one that was
    /// added; while there is none, pinned hosts are refused.
    void addSSLPinningCert(util::Bytes certificate);
    /// What pinned hosts get when they ask for a client certificate; the latest one counts. Bytes that do not parse, or a
    /// wrong pass phrase, offer none.
    void addTwowayAuthenticationPKCS12(util::Bytes pkcs12, std::optional<std::string> keyPassword);

private:
    class Session;

    void xm_dataTaskWithRequest(const std::shared_ptr<XMRequest>& request, Completion completion);
    void xm_uploadTaskWithRequest(const std::shared_ptr<XMRequest>& request, Completion completion);
    void xm_downloadTaskWithRequest(const std::shared_ptr<XMRequest>& request, Completion completion);
    static void xm_processURLRequest(platform::HttpRequest& urlRequest, const XMRequest& request);
    [[nodiscard]] Session& xm_getSessionManager(const XMRequest& request);
    static void xm_setIdentifierForReqeust(XMRequest& request, unsigned long taskIdentifier, const Session& session);

    /// Sends it, or posts the error that kept it from being built.
    void sendDataTask(const std::shared_ptr<XMRequest>& request, util::Result<platform::HttpRequest> built, Completion completion);
    void post(Completion completion, util::Error error);
    static void start(XMRequest& request, const Session& session, const std::shared_ptr<platform::HttpTask>& task);
    /// The open task that serves the request of that identifier; null when there is none.
    [[nodiscard]] std::shared_ptr<platform::HttpTask> taskOf(const std::string& identifier) const;
    [[nodiscard]] platform::HttpSessionConfiguration sessionConfiguration(SecurityPolicy::Session session) const;

    const RequestEnvironment environment_;
    const std::shared_ptr<SecurityPolicy> policy_;
    const std::unique_ptr<const RequestSerializers> requestSerializers_;
    const std::shared_ptr<const ResponseSerializers> responseSerializers_;
    const std::unique_ptr<Session> sessionManager_;
    const std::unique_ptr<Session> securitySessionManager_;
};

}  // namespace halvane::request
