#include "linux/http/CurlTransport.h"

#include "linux/http/CurlSession.h"

#include <curl/curl.h>

#include <stdexcept>
#include <utility>

namespace halvane::linux_http {

CurlTransport::CurlTransport(std::uint64_t largestBody) : largestBody_(largestBody) {
    static const CURLcode initialised = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (initialised != CURLE_OK) throw std::runtime_error("libcurl could not be initialised");
}

std::shared_ptr<platform::HttpSession> CurlTransport::makeSession(platform::HttpSessionConfiguration configuration) {
    return std::make_shared<CurlSession>(std::move(configuration), largestBody_);
}

}  // namespace halvane::linux_http
