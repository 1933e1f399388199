#include "linux/http/CurlTransport.h"

#include "linux/http/CurlSession.h"
#include "linux/http/FileBody.h"

#include <curl/curl.h>

#include <stdexcept>
#include <utility>

namespace halvane::linux_http {

CurlTransport::CurlTransport(std::uint64_t largestBody) : largestBody_(largestBody) {}

std::shared_ptr<platform::HttpSession> CurlTransport::makeSession(platform::HttpSessionConfiguration configuration) {
    // With the first session, not at the start of the program, which need not pay for TLS before it sends.
    static const CURLcode initialised = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (initialised != CURLE_OK) throw std::runtime_error("libcurl could not be initialised");
    return std::make_shared<CurlSession>(std::move(configuration), largestBody_);
}

util::Result<std::shared_ptr<platform::HttpBodyStream>> CurlTransport::fileBody(const std::filesystem::path& file) {
    return FileBody::of(file);
}

bool CurlTransport::isDirectory(const std::filesystem::path& path) const {
    std::error_code ignored;
    return std::filesystem::is_directory(path, ignored);
}

}  // namespace halvane::linux_http
