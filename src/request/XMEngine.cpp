#include "request/XMEngine.h"

#include "request/BindedRequest.h"
#include "request/RequestSerializers.h"
#include "request/ResponseSerializers.h"
#include "util/Url.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <cmath>
#include <exception>
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

util::Error noSession() { return urlError(UrlError::Unknown, "This computer has no resources left for a connection."); }

/// Told as long as the request has the callback; absent where it has none now.
std::function<void(const platform::HttpProgress&)> progressOf(const std::shared_ptr<XMRequest>& request) {
    if (!request->progressBlock()) return {};
    return [request](const platform::HttpProgress& progress) {
        if (const auto told = request->progressBlock()) told(progress);
    };
}

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

    /// Null while the system has no threads or descriptors left to make it of.
    platform::HttpSession* session() {
        try {
            std::call_once(made_, [this] {
                session_ = transport_->makeSession(configuration_);
                isMade_.store(true, std::memory_order_release);
            });
            return session_.get();
        } catch (const std::exception&) {
            return nullptr;
        }
    }

    /// Null also while the session was not needed yet.
    [[nodiscard]] std::shared_ptr<platform::HttpTask> task(unsigned long number) const {
        return isMade_.load(std::memory_order_acquire) ? session_->task(number) : nullptr;
    }

    [[nodiscard]] char prefix() const { return prefix_; }

private:
    const char prefix_;
    const std::shared_ptr<platform::HttpTransport> transport_;
    const platform::HttpSessionConfiguration configuration_;
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
    if (!completion) completion = [](const Response&, const Failure&) {};
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
    Session& session = xm_getSessionManager(*request);
    platform::HttpSession* const transport = session.session();
    if (transport == nullptr) return post(std::move(completion), noSession());
    xm_processURLRequest(*built, *request);
    platform::HttpDataHandlers handlers;
    if (request->requestType == XMRequestUpload) handlers.onUploadProgress = progressOf(request);
    handlers.onCompletion = [serializers = responseSerializers_, type = request->responseSerializerType,
                             completion = std::move(completion)](platform::HttpDataResult result) {
        auto [response, failure] = serializers->xm_processResponse(std::move(result), type);
        completion(std::move(response), std::move(failure));
    };
    start(*request, session, transport->dataTask(*std::move(built), std::move(handlers), request->shared_from_this()));
}

void XMEngine::xm_downloadTaskWithRequest(const std::shared_ptr<XMRequest>& request, Completion completion) {
    auto built = sendable(platform::HttpRequest{.url = request->url.value_or("")});
    if (!built) return post(std::move(completion), built.error());
    Session& session = xm_getSessionManager(*request);
    platform::HttpSession* const transport = session.session();
    if (transport == nullptr) return post(std::move(completion), noSession());
    for (const auto& [name, value] : environment_.defaultHeaders.fields()) built->headers.set(name, value);
    xm_processURLRequest(*built, *request);
    auto destination = request->downloadSavePath.value_or("");
    if (environment_.transport->isDirectory(destination)) destination /= util::fileNameOfUrl(built->url);
    platform::HttpDownloadHandlers handlers{.onProgress = progressOf(request)};
    handlers.destination = [destination = std::move(destination)](const platform::HttpResponse&) { return destination; };
    handlers.onCompletion = [completion = std::move(completion)](platform::HttpDownloadResult result) {
        Response file;
        if (result.file) file = *std::move(result.file);
        completion(std::move(file), std::move(result.error));
    };
    start(*request, session, transport->downloadTask(*std::move(built), std::move(handlers), request->shared_from_this()));
}

void XMEngine::start(XMRequest& request, const Session& session, const std::shared_ptr<platform::HttpTask>& task) {
    xm_setIdentifierForReqeust(request, task->taskIdentifier(), session);
    task->resume();
}

void XMEngine::xm_setIdentifierForReqeust(XMRequest& request, unsigned long taskIdentifier, const Session& session) {
    request.setIdentifier(session.prefix() + std::to_string(taskIdentifier));
}

std::shared_ptr<platform::HttpTask> XMEngine::taskOf(const std::string& identifier) const {
    unsigned long number = 0;
    if (identifier.empty()) return nullptr;
    std::from_chars(identifier.data() + 1, identifier.data() + identifier.size(), number);
    for (const Session* session : {sessionManager_.get(), securitySessionManager_.get()}) {
        if (identifier.front() != session->prefix()) continue;
        auto task = session->task(number);
        const auto request = task ? bindedRequest(*task) : nullptr;
        if (request && request->identifier() == identifier) return task;
    }
    return nullptr;
}

std::shared_ptr<XMRequest> XMEngine::cancelRequestByIdentifier(const std::string& identifier) {
    const auto task = taskOf(identifier);
    if (!task) return nullptr;
    auto request = bindedRequest(*task);
    task->cancel();
    return request;
}

std::shared_ptr<XMRequest> XMEngine::getRequestByIdentifier(const std::string& identifier) const {
    const auto task = taskOf(identifier);
    return task ? bindedRequest(*task) : nullptr;
}

void XMEngine::setConcurrentOperationCount(std::int64_t count) {
    const int limit = static_cast<int>(std::clamp<std::int64_t>(count, 1, std::numeric_limits<int>::max()));
    for (Session* session : {sessionManager_.get(), securitySessionManager_.get()}) {
        if (auto* const made = session->session()) made->setMaximumConcurrentTasks(limit);
    }
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
