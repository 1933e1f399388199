#pragma once

#include "platform/HttpMessage.h"
#include "util/Result.h"
#include "util/Value.h"

#include <chrono>
#include <optional>
#include <string>

namespace halvane::http {

/// Makes requests out of a method, an address and parameters. Holds the headers that go with every
/// request, and a time-out. One thread at a time; a plain base for one class per encoding.
class RequestSerializer {
public:
    explicit RequestSerializer(platform::HttpHeaders defaultHeaders) : headers_(std::move(defaultHeaders)) {}
    virtual ~RequestSerializer() = default;

    /// Stays until it is set again.
    void setHeader(const std::string& name, std::string value) { headers_.set(name, std::move(value)); }
    [[nodiscard]] const platform::HttpHeaders& headers() const { return headers_; }

    /// Idle time; the transport's default until set.
    void setTimeout(std::chrono::milliseconds timeout) { timeout_ = timeout; }

    /// Absent parameters make no body. Errors: the parameters cannot be encoded.
    [[nodiscard]] util::Result<platform::HttpRequest> request(const std::string& method, const std::string& url,
                                                              const std::optional<util::Dictionary>& parameters) const;

protected:
    /// Puts `parameters` into `request`, headers of the encoding included where none were set.
    virtual util::Result<void> encode(const util::Dictionary& parameters, platform::HttpRequest& request) const = 0;

private:
    platform::HttpHeaders headers_;
    std::chrono::milliseconds timeout_ = platform::HttpRequest::kDefaultTimeout;
};

}  // namespace halvane::http
