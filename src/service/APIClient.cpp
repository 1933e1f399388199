#include "service/APIClient.h"

#include "http/JsonRequestSerializer.h"
#include "http/JsonResponseSerializer.h"
#include "http/SessionManager.h"
#include "platform/Directories.h"
#include "platform/HttpSession.h"
#include "platform/Reachability.h"
#include "session/HDCLUserConfig.h"
#include "util/SharedInstance.h"
#include "util/Text.h"

#include <utility>

namespace halvane::service {

namespace {

/// How a parameter stands inside an address.
std::string inAddress(const util::Value& value) { return util::printed(util::textOf(&value)); }

/// Absent values travel as empty texts: the server knows no null.
std::optional<util::Dictionary> withoutNulls(const std::optional<util::Dictionary>& params) {
    if (!params) return params;
    util::Dictionary filled;
    for (const auto& [key, value] : *params) filled.set(key, value.isNull() ? util::Value("") : value);
    return filled;
}

bool hasParameters(const std::optional<std::string>& url, const std::optional<util::Dictionary>& params) {
    return url && params && !params->empty();
}

}  // namespace

APIClient::APIClient(Collaborators collaborators) : collaborators_(std::move(collaborators)), alive_(std::make_shared<bool>(true)) {}

APIClient::~APIClient() {
    *alive_ = false;
    // Sessions cancel what they still do. Their completions find nobody; they may run within this call.
    std::exchange(downloads_, {}).clear();
}

APIClient& APIClient::sharedInstance() { return util::SharedInstance<APIClient>::get(); }

http::SessionManager& APIClient::manager() {
    if (manager_) return *manager_;
    const platform::HttpHeaders defaults{{"Accept-Language", collaborators_.acceptLanguage}, {"User-Agent", collaborators_.userAgent}};
    auto made = std::make_unique<http::SessionManager>(collaborators_.transport.makeSession({.resultQueue = collaborators_.mainQueue}),
                                                       collaborators_.mainQueue, std::make_unique<http::JsonRequestSerializer>(defaults),
                                                       std::make_unique<http::JsonResponseSerializer>());
    // The time-out goes away with the serializer that the next line replaces: requests are meant to run
    // with the transport's default.
    made->requestSerializer().setTimeout(std::chrono::seconds(30));
    made->setRequestSerializer(std::make_unique<http::JsonRequestSerializer>(defaults));
    auto replies = std::make_unique<http::JsonResponseSerializer>(http::JsonReading::AllowFragments);
    // The last one stands as old servers send it.
    replies->setAcceptableContentTypes(
        {"application/json", "text/json", "text/javascript", "text/html", "text/plain", "application/x-www-form-urlencodem"});
    made->setResponseSerializer(std::move(replies));
    made->requestSerializer().setHeader("Content-Type", "application/json; charset=utf-8");
    manager_ = std::move(made);
    return *manager_;
}

void APIClient::requestURL(const std::string& url, int httpMethod, const std::optional<util::Dictionary>& params, Response response) {
    if (networkType() < 1) {
        if (response) response(kNoNetwork, std::nullopt, std::nullopt);
        return;
    }
    http::SessionManager& session = manager();
    const session::HDCLUserModel* user = collaborators_.user.user_getUserInfo();
    session.requestSerializer().setHeader("token-id", user == nullptr ? "" : user->token.value_or(""));

    auto completion = [this, alive = alive_, response = std::move(response)](const util::Result<util::Value>& result) {
        if (!*alive || !response) return;
        if (result) {
            handleSuccessRequest(*result, response);
        } else {
            response(kFailure, std::nullopt, result.error());
        }
    };
    switch (httpMethod) {
        case 0:
            session.send("GET", url, std::nullopt, std::move(completion));
            break;
        case 1:
            session.send("POST", url, withoutNulls(params), std::move(completion));
            break;
        case 2:
            session.send("DELETE", url, std::nullopt, std::move(completion));
            break;
        case 3:
            session.send("PUT", url, withoutNulls(params), std::move(completion));
            break;
        case 4:
            session.send("GET", *pathGet(url, params), std::nullopt, std::move(completion));
            break;
        case 5:
            session.send("GET", *queryGet(url, params), std::nullopt, std::move(completion));
            break;
        default:
            break;
    }
}

std::optional<std::string> APIClient::pathGet(const std::optional<std::string>& url, const std::optional<util::Dictionary>& params) {
    if (!hasParameters(url, params)) return url;
    std::string path = *url;
    for (const auto& [key, value] : *params) path = util::replaced(path, "{" + key + "}", inAddress(value));
    return util::addingPercentEscapes(path);
}

std::optional<std::string> APIClient::queryGet(const std::optional<std::string>& url, const std::optional<util::Dictionary>& params) {
    if (!hasParameters(url, params)) return url;
    std::string query = *url;
    char separator = '?';
    for (const auto& [key, value] : *params) {
        query.append(1, separator).append(key).append("=").append(inAddress(value));
        separator = '&';
    }
    return util::addingPercentEscapes(query);
}

void APIClient::handleSuccessRequest(const util::Value& response, const Response& callback) {
    if (!callback) return;
    if (const auto hook = delegate.lock()) {
        hook->handleSuccessRequest(response, [alive = alive_, once = std::make_shared<bool>(false), callback](const util::Value& object) {
            if (*alive && !std::exchange(*once, true)) callback(kSuccess, object, std::nullopt);
        });
    } else {
        callback(kSuccess, response, std::nullopt);
    }
}

void APIClient::cancelAllRequest() {
    if (manager_) manager_->cancelAllOperations();
}

void APIClient::downloadURL(const std::string& url, Progress progress, Destination destination, Failure failure) {
    platform::HttpDownloadHandlers handlers;
    handlers.onProgress = [alive = alive_, progress = std::move(progress)](const platform::HttpProgress& update) {
        if (*alive && progress) progress(update);
    };
    handlers.destination = [caches = collaborators_.directories.caches()](const platform::HttpResponse& response) {
        return caches / response.suggestedFileName();
    };
    // The session lives as long as its one task.
    const auto session = collaborators_.transport.makeSession({.resultQueue = collaborators_.mainQueue});
    const auto number = nextDownload_++;
    downloads_.emplace(number, session);
    handlers.onCompletion = [this, number, alive = alive_, destination = std::move(destination),
                             failure = std::move(failure)](const platform::HttpDownloadResult& result) {
        if (!*alive) return;
        const auto ended = downloads_.extract(number);
        if (result.error && failure) failure(*result.error);
        if (result.file && destination) destination("file://" + result.file->string());
    };
    session->downloadTask({.url = url}, std::move(handlers))->resume();
}

void APIClient::networkReachableWithBlock(std::function<void(bool)> block) {
    collaborators_.reachability.setHandler([block = std::move(block)](platform::ReachabilityStatus status) {
        if (!block) return;
        switch (status) {
            case platform::ReachabilityStatus::WideAreaNetwork:
            case platform::ReachabilityStatus::Wifi:
                block(true);
                break;
            case platform::ReachabilityStatus::NotReachable:
                block(false);
                break;
            case platform::ReachabilityStatus::Unknown:
                break;
        }
    });
    collaborators_.reachability.startMonitoring();
}

}  // namespace halvane::service
