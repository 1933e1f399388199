#pragma once

#include "util/Bytes.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace halvane::server {

/// A request as the operations see it: decoded, bounded in size, of any content. A plain value.
struct ApiRequest {
    std::string method;  ///< "GET" also for HEAD
    std::string path;    ///< percent-decoded, without the query
    std::map<std::string, std::string> query;
    std::string token;  ///< header token-id; empty when there is none
    std::string contentType;
    util::Bytes body;
};

struct ApiReply {
    int status = 200;
    std::string contentType;
    util::Bytes body;
    std::vector<std::pair<std::string, std::string>> headers;
};

}  // namespace halvane::server
