#include "server/http/AccessLog.h"

#include <fcntl.h>
#include <fmt/chrono.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace halvane::server {

AccessLog::AccessLog(const std::filesystem::path& file, Clock clock) : clock_(std::move(clock)) {
    const int descriptor = file == "-" ? ::dup(STDERR_FILENO) : ::open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (descriptor >= 0) file_.reset(::fdopen(descriptor, "a"));
    if (!file_) throw std::system_error(errno, std::generic_category(), "cannot write the access log " + file.string());
}

void AccessLog::Closer::operator()(std::FILE* file) const { std::fclose(file); }

void AccessLog::write(const HttpServer::Exchange& exchange) {
    const auto orDash = [](const std::string& text) { return text.empty() ? std::string("-") : text; };
    const std::string line =
        fmt::format("{:%Y-%m-%dT%H:%M:%SZ} {} {} {} {} {:.3f}ms\n", fmt::gmtime(clock_()), orDash(exchange.method), orDash(exchange.path),
                    exchange.status, exchange.bytes, static_cast<double>(exchange.duration.count()) / 1000.0);
    const std::lock_guard lock(mutex_);
    std::fwrite(line.data(), 1, line.size(), file_.get());
    // At once: whoever looks at the log wants to see the request that was just answered.
    std::fflush(file_.get());
}

}  // namespace halvane::server
