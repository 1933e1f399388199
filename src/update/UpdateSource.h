#pragma once

#include "util/PublicKey.h"

#include <string>

namespace halvane::update {

/// Where updates come from and whose signature counts: fixed when the client is built. A plain value.
struct UpdateSource {
    std::string feedUrl;  ///< http or https; what it leads to stays in that scheme
    util::PublicKey key;
    std::string userAgent;
};

}  // namespace halvane::update
