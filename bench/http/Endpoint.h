#pragma once

#include <charconv>
#include <cstdint>
#include <string>

namespace halvane::bench {

/// A URL of the bench's server, taken apart for those who want it in pieces.
struct Endpoint {
    explicit Endpoint(const std::string& url) {
        const auto begin = url.find("//") + 2;
        const auto colon = url.find(':', begin);
        const auto slash = url.find('/', begin);
        host = url.substr(begin, colon - begin);
        std::from_chars(url.data() + colon + 1, url.data() + slash, port);
        path = url.substr(slash);
    }

    std::string host;
    std::uint16_t port = 0;
    std::string path;
};

}  // namespace halvane::bench
