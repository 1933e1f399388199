#pragma once

#include "server/api/Message.h"
#include "util/Result.h"

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>

namespace httplib {
class Server;
struct Request;
struct Response;
class ContentReader;
}  // namespace httplib

namespace halvane::server {

/// HTTP or HTTPS on one address; the door to the HTTP library. What is no proper request never reaches
/// the handler: it is answered here, with a JSON reason.
class HttpServer {
public:
    /// Called on several threads at a time.
    using Handler = std::function<ApiReply(const ApiRequest&)>;

    /// One answered request, for the access log. `method` and `path` are empty when the request line
    /// could not be read.
    struct Exchange {
        std::string method;
        std::string path;
        int status = 0;
        std::size_t bytes = 0;
        std::chrono::microseconds duration{0};
    };
    using Observer = std::function<void(const Exchange&)>;

    struct Tls {
        std::filesystem::path certificate;  ///< PEM, with its chain
        std::filesystem::path key;          ///< PEM
    };

    /// No operation takes more.
    static constexpr std::size_t kLargestBody = 64 * 1024;

    /// `observer` may be empty; it is called on the thread that answered, after the reply has been sent.
    HttpServer(const std::optional<Tls>& tls, Observer observer);
    /// Stops.
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    /// Takes the address, once; connections wait from now on. Port 0 is any free port. Answers the port.
    util::Result<int> bind(const std::string& host, int port);
    /// Begins to answer, on threads of its own.
    void start(Handler handler);
    /// Ends when running requests have been answered; takes at most a second more for idle connections.
    void stop();

private:
    void configure();
    ApiReply answer(const httplib::Request& request, const httplib::ContentReader* content);

    std::unique_ptr<httplib::Server> server_;
    const bool usable_;  ///< false: certificate or key could not be read
    const Observer observer_;
    Handler handler_;  ///< set before the threads begin
    std::thread listener_;
};

}  // namespace halvane::server
