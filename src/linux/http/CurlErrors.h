#pragma once

#include "util/Error.h"

#include <curl/curl.h>

#include <string>

namespace halvane::linux_http {

/// What is known about a transfer that failed.
struct FailureContext {
    std::string server;  ///< "host:port"
    int osErrno = 0;
    std::string certificateRefusal;  ///< empty when the certificate was not the reason
    bool tlsAlertReceived = false;
};

/// The one place where libcurl's codes become ours.
util::Error errorOf(CURLcode code, const FailureContext& context);

util::Error cancelledError();
util::Error timedOutError(const std::string& server);
util::Error connectionLostError(const std::string& server);

}  // namespace halvane::linux_http
