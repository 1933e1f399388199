#pragma once

#include "http/MultipartFormData.h"
#include "platform/HttpMessage.h"
#include "util/Result.h"
#include "util/Value.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace halvane::http {

/// Makes requests out of a method, an address and parameters. Holds the headers that go with every
/// request, and a time-out. Setting is for one thread; once set, any thread may make requests.
///
/// GET, HEAD and DELETE carry their parameters in the address, form-encoded; the others in a body, of which there is
/// one class per encoding.
class RequestSerializer {
public:
    explicit RequestSerializer(platform::HttpHeaders defaultHeaders) : headers_(std::move(defaultHeaders)) {}
    virtual ~RequestSerializer() = default;

    /// Stays until it is set again.
    void setHeader(const std::string& name, std::string value) { headers_.set(name, std::move(value)); }
    [[nodiscard]] const platform::HttpHeaders& headers() const { return headers_; }

    /// Idle time; the transport's default until set.
    void setTimeout(std::chrono::milliseconds timeout) { timeout_ = timeout; }

    /// Errors: the parameters cannot be encoded.
    [[nodiscard]] util::Result<platform::HttpRequest> request(const std::string& method, const std::string& url,
                                                              const std::optional<util::Dictionary>& parameters) const;

    /// A body of parts: a form field for each of the parameters, and what `constructBody` adds. Without any part it is a
    /// request without parameters. `form` makes an empty form.
    [[nodiscard]] util::Result<platform::HttpRequest> multipartFormRequest(
        const std::string& method, const std::string& url, const std::optional<util::Dictionary>& parameters, MultipartFormData form,
        const std::function<void(MultipartFormData&)>& constructBody) const;

protected:
    /// Puts `parameters` into the body of `request`, headers of the encoding included where none were set.
    virtual util::Result<void> encode(const std::optional<util::Dictionary>& parameters, platform::HttpRequest& request) const = 0;

    static void setContentTypeWhereNoneIs(platform::HttpRequest& request, const char* type);

private:
    platform::HttpHeaders headers_;
    std::chrono::milliseconds timeout_ = platform::HttpRequest::kDefaultTimeout;
};

}  // namespace halvane::http
