#include "server/http/HttpServer.h"

#include "server/api/Envelope.h"

#include <httplib.h>

#include <cerrno>

namespace halvane::server {

namespace {

constexpr std::size_t kThreads = 16;
constexpr std::size_t kRequestsPerConnection = 1000;
/// An idle connection occupies a thread, and stop() waits for it.
constexpr std::time_t kIdleSeconds = 1;
constexpr std::time_t kReadSeconds = 5;
/// The library matches paths by recursion, a step a character.
constexpr std::size_t kLongestPath = 1024;
/// What is still read of a body that is too large, so that its sender reads the refusal.
constexpr std::size_t kMostDiscarded = 8 << 20;

using Instant = std::chrono::steady_clock::time_point;
/// When this thread began its present request; the library answers a request on one thread.
thread_local std::optional<Instant> requestBegan;

std::unique_ptr<httplib::Server> makeServer(const std::optional<HttpServer::Tls>& tls) {
    if (!tls) return std::make_unique<httplib::Server>();
    return std::make_unique<httplib::SSLServer>(tls->certificate.c_str(), tls->key.c_str());
}

void send(ApiReply&& reply, httplib::Response& response) {
    // The library makes 200 of it, or 206 where it sends a range.
    if (reply.status != 200) response.status = reply.status;
    for (const auto& [name, value] : reply.headers) response.set_header(name, value);
    // Not the library's set_content, which copies: packages are large.
    response.body = std::move(reply.body);
    response.set_header("Content-Type", reply.contentType);
}

std::string reasonFor(int status) {
    switch (status) {
        case 400:
            return "not a proper HTTP request";
        case 404:
            return "no such operation";
        case 413:
            return "the body is larger than " + std::to_string(HttpServer::kLargestBody) + " bytes";
        case 414:
            return "the path is too long";
        case 416:
            return "the range cannot be satisfied";
        default:
            return "HTTP status " + std::to_string(status);
    }
}

/// Reads the body into `body`; an error reply when it cannot be had.
std::optional<ApiReply> readBody(const httplib::Request& request, const httplib::ContentReader& content, util::Bytes& body) {
    std::size_t received = 0;
    const auto receive = [&body, &received](const char* bytes, std::size_t count) {
        received += count;
        if (received <= HttpServer::kLargestBody) body.append(bytes, count);
        return received <= kMostDiscarded;
    };
    if (request.is_multipart_form_data()) {
        content([](const httplib::MultipartFormData&) { return true; }, receive);
        return Envelope::malformed("the content type must be application/json");
    }
    // The library does not even hand out a body that is announced as too large.
    const auto announced = request.get_header_value<std::uint64_t>("Content-Length");
    const bool whole = content(receive);
    if (received > HttpServer::kLargestBody || announced > HttpServer::kLargestBody) return Envelope::failed(413, reasonFor(413));
    // An encoding that the library does not know, or a connection that ended early.
    if (!whole) return Envelope::malformed("the body cannot be read");
    return std::nullopt;
}

}  // namespace

HttpServer::HttpServer(const std::optional<Tls>& tls, Observer observer)
    : server_(makeServer(tls)), usable_(server_->is_valid()), observer_(std::move(observer)) {
    if (usable_) configure();
}

HttpServer::~HttpServer() { stop(); }

void HttpServer::configure() {
    server_->new_task_queue = [] { return new httplib::ThreadPool(kThreads); };
    server_->set_keep_alive_max_count(kRequestsPerConnection);
    server_->set_keep_alive_timeout(kIdleSeconds);
    server_->set_read_timeout(kReadSeconds);
    server_->set_payload_max_length(kLargestBody);
    server_->set_tcp_nodelay(true);
    // Not the library's SO_REUSEPORT: a second server on the same port must fail, not take half of the requests.
    server_->set_socket_options([](socket_t socket) {
        const int yes = 1;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof(yes));
    });
    server_->set_default_headers({{"Cache-Control", "no-store"}, {"X-Content-Type-Options", "nosniff"}});

    server_->set_pre_routing_handler([](const httplib::Request& request, httplib::Response& response) {
        requestBegan = std::chrono::steady_clock::now();
        if (request.path.size() <= kLongestPath) return httplib::Server::HandlerResponse::Unhandled;
        send(Envelope::failed(414, reasonFor(414)), response);
        return httplib::Server::HandlerResponse::Handled;
    });
    const auto withoutBody = [this](const httplib::Request& request, httplib::Response& response) {
        send(answer(request, nullptr), response);
    };
    const auto withBody = [this](const httplib::Request& request, httplib::Response& response, const httplib::ContentReader& content) {
        send(answer(request, &content), response);
    };
    constexpr const char* kEveryPath = "[\\s\\S]*";
    server_->Get(kEveryPath, withoutBody);
    server_->Options(kEveryPath, withoutBody);
    server_->Delete(kEveryPath, withoutBody);
    server_->Post(kEveryPath, withBody);
    server_->Put(kEveryPath, withBody);
    server_->Patch(kEveryPath, withBody);
    server_->Delete(kEveryPath, withBody);
    // Called for every status from 400 on; only what the library refused by itself has no body yet.
    server_->set_error_handler([](const httplib::Request&, httplib::Response& response) {
        if (response.body.empty()) send(Envelope::failed(response.status, reasonFor(response.status)), response);
    });
    server_->set_logger([this](const httplib::Request& request, const httplib::Response& response) {
        const auto began = std::exchange(requestBegan, std::nullopt);
        if (!observer_) return;
        Exchange exchange{.status = response.status, .bytes = response.body.size()};
        // Without a beginning the library could not read the request: what it took for a method may be anything.
        if (began) {
            exchange.method = request.method;
            exchange.path = request.path;
            exchange.duration = std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - *began);
        }
        observer_(exchange);
    });
}

ApiReply HttpServer::answer(const httplib::Request& request, const httplib::ContentReader* content) {
    ApiRequest api{.method = request.method == "HEAD" ? "GET" : request.method,
                   .path = request.path,
                   .query = {request.params.begin(), request.params.end()},
                   .token = request.get_header_value("token-id"),
                   .contentType = request.get_header_value("Content-Type"),
                   .body = {}};
    if (content != nullptr) {
        if (auto refusal = readBody(request, *content, api.body)) return std::move(*refusal);
    }
    return handler_(api);
}

util::Result<int> HttpServer::bind(const std::string& host, int port) {
    if (!usable_) return util::serviceError("certificate or key cannot be read, or do not belong together");
    errno = 0;
    const int bound = port == 0 ? server_->bind_to_any_port(host) : (server_->bind_to_port(host, port) ? port : -1);
    if (bound > 0) return bound;
    return util::fileError(errno == 0 ? EADDRNOTAVAIL : errno, "listen on " + host + ":" + std::to_string(port));
}

void HttpServer::start(Handler handler) {
    handler_ = std::move(handler);
    listener_ = std::thread([this] { server_->listen_after_bind(); });
    // stop() is ignored by a library that has not come round to listening; it takes a moment.
    for (int attempt = 0; attempt < 5000 && !server_->is_running(); ++attempt) std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

void HttpServer::stop() {
    if (!listener_.joinable()) return;
    server_->stop();
    listener_.join();
}

}  // namespace halvane::server
