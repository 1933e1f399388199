#include "request/XMEngine.h"

#include "request/BindedRequest.h"
#include "request/RequestSerializers.h"
#include "request/ResponseSerializers.h"
#include "util/Url.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <limits>
#include <utility>

namespace halvane::request {

namespace {

using util::UrlError;
using util::urlError;

constexpr int kConcurrentOperations = 5;

std::optional<std::string> methodName(XMHTTPMethod method) {
    static constexpr std::array kNames = {"GET", "POST", "HEAD", "DELETE", "PUT", "PATCH"};
    const auto index = static_cast<std::uint64_t>(method);
    if (index >= kNames.size()) return std::nullopt;
    return kNames[index];
}

std::chrono::milliseconds asTimeout(double seconds) {
    constexpr double kLongest = 24 * 60 * 60;
    if (!(seconds > 0)) return platform::HttpRequest::kDefaultTimeout;
    return std::max(std::chrono::milliseconds(1), std::chrono::milliseconds(std::llround(std::min(seconds, kLongest) * 1000)));
}

/// What of it goes out, or why it cannot.
util::Result<platform::HttpRequest> sendable(util::Result<platform::HttpRequest> built) {
    if (built && !util::isSendableUrl(built->url)) {
        return urlError(UrlError::BadUrl, "The request has no address of http or https, or not a valid one.");
    }
    return built;
}

util::Error noSerializer() { return urlError(UrlError::Unknown, "There is no way of encoding a request by that number."); }

/// A failing file ends the walk; what was appended before it goes out.
void appendParts(const std::vector<XMUploadFormData>& parts, http::MultipartFormData& form) {
    for (const XMUploadFormData& part : parts) {
        const bool isNamed = part.fileName && part.mimeType;
        if (part.fileData && isNamed) {
            form.appendPartWithFileData(part.fileData, part.name, *part.fileName, *part.mimeType);
        } else if (part.fileData) {
            form.appendPartWithFormData(part.fileData, part.name);
        } else if (part.fileURL) {
            const auto appended = isNamed ? form.appendPartWithFileURL(*part.fileURL, part.name, *part.fileName, *part.mimeType)
                                          : form.appendPartWithFileURL(*part.fileURL, part.name);
            if (!appended) return;
        }
    }
}

}  // namespace

/// One of the two pools of connections. Made on first use.
class XMEngine::Session {
public:
    Session(char prefix, std::shared_ptr<platform::HttpTransport> transport, platform::HttpSessionConfiguration configuration)
        : prefix_(prefix), transport_(std::move(transport)), configuration_(std::move(configuration)) {}

    platform::HttpSession& session() {
        std::call_once(made_, [this] {
            session_ = transport_->makeSession(std::move(configuration_));
            isMade_.store(true, std::memory_order_release);
        });
        return *session_;
    }

    /// Empty while the session was not needed yet.
    [[nodiscard]] std::vector<std::shared_ptr<platform::HttpTask>> tasks() const {
        if (!isMade_.load(std::memory_order_acquire)) return {};
        return session_->tasks();
    }

    [[nodiscard]] char prefix() const { return prefix_; }

private:
    const char prefix_;
    const std::shared_ptr<platform::HttpTransport> transport_;
    platform::HttpSessionConfiguration configuration_;  // until the session is made
    std::once_flag made_;
    std::atomic<bool> isMade_{false};
    std::shared_ptr<platform::HttpSession> session_;
};

XMEngine::XMEngine(RequestEnvironment environment)
    : environment_(std::move(environment)),
      policy_(std::make_shared<SecurityPolicy>()),
      requestSerializers_(std::make_unique<const RequestSerializers>(environment_.defaultHeaders)),
      responseSerializers_(std::make_shared<const ResponseSerializers>()),
      sessionManager_(std::make_unique<Session>('+', environment_.transport, sessionConfiguration(SecurityPolicy::Session::Ordinary))),
      securitySessionManager_(
          std::make_unique<Session>('-', environment_.transport, sessionConfiguration(SecurityPolicy::Session::Pinned))) {}

XMEngine::~XMEngine() = default;

std::shared_ptr<XMEngine> XMEngine::engine() { return std::make_shared<XMEngine>(RequestEnvironment::shared()); }

const std::shared_ptr<XMEngine>& XMEngine::sharedEngine() {
    // On the heap for good: requests may still run while the process ends.
    static const auto* shared = new std::shared_ptr<XMEngine>(engine());
    return *shared;
}

platform::HttpSessionConfiguration XMEngine::sessionConfiguration(SecurityPolicy::Session session) const {
    platform::HttpSessionConfiguration configuration{.resultQueue = environment_.completionQueue,
                                                     .maximumConcurrentTasks = kConcurrentOperations};
    configuration.tls.evaluateServerTrust = [policy = policy_, session](const platform::ServerTrust& trust) {
        return policy->evaluateServerTrust(trust, session);
    };
    if (session == SecurityPolicy::Session::Pinned) {
        configuration.tls.clientIdentity = [policy = policy_](const std::string& host) { return policy->identityFor(host); };
    }
    return configuration;
}

XMEngine::Session& XMEngine::xm_getSessionManager(const XMRequest& request) {
    return request.url && policy_->xm_shouldSSLPinningWithURL(*request.url) ? *securitySessionManager_ : *sessionManager_;
}

void XMEngine::sendRequest(const std::shared_ptr<XMRequest>& request, Completion completion) {
    switch (request->requestType) {
        case XMRequestNormal:
            return xm_dataTaskWithRequest(request, std::move(completion));
        case XMRequestUpload:
            return xm_uploadTaskWithRequest(request, std::move(completion));
        case XMRequestDownload:
            return xm_downloadTaskWithRequest(request, std::move(completion));
    }
}

void XMEngine::post(Completion completion, util::Error error) {
    environment_.completionQueue->async(
        [completion = std::move(completion), error = std::move(error)] { completion(std::nullopt, error); });
}

void XMEngine::xm_processURLRequest(platform::HttpRequest& urlRequest, const XMRequest& request) {
    for (const auto& [name, value] : request.headers.fields()) urlRequest.headers.set(name, value);
    urlRequest.timeout = asTimeout(request.timeoutInterval);
}

void XMEngine::xm_dataTaskWithRequest(const std::shared_ptr<XMRequest>& request, Completion completion) {
    const auto method = methodName(request->httpMethod);
    const http::RequestSerializer* serializer = requestSerializers_->xm_getRequestSerializer(request->requestSerializerType);
    if (!method) return post(std::move(completion), urlError(UrlError::Unknown, "There is no method by that number."));
    if (serializer == nullptr) return post(std::move(completion), noSerializer());
    sendDataTask(request, serializer->request(*method, request->url.value_or(""), request->parameters), std::move(completion));
}

void XMEngine::xm_uploadTaskWithRequest(const std::shared_ptr<XMRequest>& request, Completion completion) {
    const http::RequestSerializer* serializer = requestSerializers_->xm_getRequestSerializer(request->requestSerializerType);
    if (serializer == nullptr) return post(std::move(completion), noSerializer());
    http::MultipartFormData form([transport = environment_.transport](const auto& file) { return transport->fileBody(file); });
    const auto append = [&request](http::MultipartFormData& body) { appendParts(request->uploadFormDatas, body); };
    auto built = serializer->multipartFormRequest("POST", request->url.value_or(""), request->parameters, std::move(form), append);
    sendDataTask(request, std::move(built), std::move(completion));
}

void XMEngine::sendDataTask(const std::shared_ptr<XMRequest>& request, util::Result<platform::HttpRequest> built, Completion completion) {
    built = sendable(std::move(built));
    if (!built) return post(std::move(completion), built.error());
    xm_processURLRequest(*built, *request);
    platform::HttpDataHandlers handlers;
    if (request->requestType == XMRequestUpload) handlers.onUploadProgress = request->progressBlock();
    handlers.onCompletion = [serializers = responseSerializers_, type = request->responseSerializerType,
                             completion = std::move(completion)](platform::HttpDataResult result) {
        auto [response, failure] = serializers->xm_processResponse(std::move(result), type);
        completion(std::move(response), std::move(failure));
    };
    Session& session = xm_getSessionManager(*request);
    start(request, session, session.session().dataTask(*std::move(built), std::move(handlers), request));
}

void XMEngine::xm_downloadTaskWithRequest(const std::shared_ptr<XMRequest>& request, Completion completion) {
    auto built = sendable(platform::HttpRequest{.url = request->url.value_or("")});
    if (!built) return post(std::move(completion), built.error());
    for (const auto& [name, value] : environment_.defaultHeaders.fields()) built->headers.set(name, value);
    xm_processURLRequest(*built, *request);
    auto destination = request->downloadSavePath.value_or("");
    if (environment_.transport->isDirectory(destination)) destination /= util::fileNameOfUrl(built->url);
    platform::HttpDownloadHandlers handlers{.onProgress = request->progressBlock()};
    handlers.destination = [destination = std::move(destination)](const platform::HttpResponse&) { return destination; };
    handlers.onCompletion = [completion = std::move(completion)](platform::HttpDownloadResult result) {
        Response file;
        if (result.file) file = *std::move(result.file);
        completion(std::move(file), std::move(result.error));
    };
    Session& session = xm_getSessionManager(*request);
    start(request, session, session.session().downloadTask(*std::move(built), std::move(handlers), request));
}

void XMEngine::start(const std::shared_ptr<XMRequest>& request, const Session& session, const std::shared_ptr<platform::HttpTask>& task) {
    xm_setIdentifierForReqeust(*request, task->taskIdentifier(), session);
    task->resume();
}

void XMEngine::xm_setIdentifierForReqeust(XMRequest& request, unsigned long taskIdentifier, const Session& session) {
    request.setIdentifier(session.prefix() + std::to_string(taskIdentifier));
}

std::shared_ptr<XMRequest> XMEngine::walk(const std::string& identifier, Found found) const {
    if (identifier.empty()) return nullptr;
    const std::lock_guard lock(lock_);
    for (const Session* session : {sessionManager_.get(), securitySessionManager_.get()}) {
        if (identifier.front() != session->prefix()) continue;
        for (const auto& task : session->tasks()) {
            auto request = bindedRequest(*task);
            if (!request || request->identifier() != identifier) continue;
            if (found == Found::Cancel) task->cancel();
            return request;
        }
    }
    return nullptr;
}

std::shared_ptr<XMRequest> XMEngine::cancelRequestByIdentifier(const std::string& identifier) { return walk(identifier, Found::Cancel); }

std::shared_ptr<XMRequest> XMEngine::getRequestByIdentifier(const std::string& identifier) const { return walk(identifier, Found::Answer); }

void XMEngine::setConcurrentOperationCount(std::int64_t count) {
    const int limit = static_cast<int>(std::clamp<std::int64_t>(count, 1, std::numeric_limits<int>::max()));
    for (Session* session : {sessionManager_.get(), securitySessionManager_.get()}) session->session().setMaximumConcurrentTasks(limit);
}

XMNetworkStatus XMEngine::reachabilityStatus() const {
    return environment_.reachability ? environment_.reachability->status() : XMNetworkStatus::Unknown;
}

void XMEngine::addSSLPinningURL(const std::string& url) { policy_->addSSLPinningURL(url); }

void XMEngine::addSSLPinningCert(util::Bytes certificate) { policy_->addSSLPinningCert(std::move(certificate)); }

void XMEngine::addTwowayAuthenticationPKCS12(util::Bytes pkcs12, std::optional<std::string> keyPassword) {
    policy_->setClientIdentity({std::move(pkcs12), std::move(keyPassword)});
}

}  // namespace halvane::request
