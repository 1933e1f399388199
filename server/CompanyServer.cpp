#include "server/CompanyServer.h"

#include "server/Company.h"

namespace halvane::server {

namespace {

HttpServer::Observer observerFor(AccessLog* log) {
    if (log == nullptr) return nullptr;
    return [log](HttpServer::Exchange exchange) {
        exchange.path = CompanyApi::pathForLog(exchange.path);
        log->write(exchange);
    };
}

std::string urlOf(const CompanyServer::Options& options, int port) {
    const bool isV6 = options.host.find(':') != std::string::npos;
    return (options.tls ? "https://" : "http://") + (isV6 ? "[" + options.host + "]" : options.host) + ":" + std::to_string(port);
}

}  // namespace

CompanyServer::CompanyServer(Company& company, Options options)
    : company_(company), options_(std::move(options)), http_(options_.tls, observerFor(options_.accessLog)) {}

util::Result<std::string> CompanyServer::start() {
    const auto port = http_.bind(options_.host, options_.port);
    if (!port) return port.error();
    const std::string url = urlOf(options_, *port);
    api_.emplace(company_, options_.publicUrl.empty() ? url : options_.publicUrl);
    http_.start([this](const ApiRequest& request) { return api_->handle(request); });
    return url;
}

}  // namespace halvane::server
