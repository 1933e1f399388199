#pragma once

#include "server/api/CompanyApi.h"
#include "server/http/AccessLog.h"
#include "server/http/HttpServer.h"
#include "util/Result.h"

#include <optional>
#include <string>

namespace halvane::server {

class Company;

/// The company server, put together: a company's data, answered for over HTTP.
/// start() and stop() belong to one thread; requests are answered on others.
class CompanyServer {
public:
    struct Options {
        std::string host = "127.0.0.1";
        int port = 0;  ///< 0: any free one
        std::optional<HttpServer::Tls> tls;
        std::string publicUrl;           ///< how clients reach it; empty: the address it listens on
        AccessLog* accessLog = nullptr;  ///< outlives the server
    };

    /// `company` outlives the server.
    CompanyServer(Company& company, Options options);

    /// Once. Answers the server's own address, such as "http://127.0.0.1:45123".
    util::Result<std::string> start();
    void stop() { http_.stop(); }

private:
    Company& company_;
    const Options options_;
    std::optional<CompanyApi> api_;  ///< made at start, when the address is known
    HttpServer http_;                ///< last: stops before what it calls goes
};

}  // namespace halvane::server
