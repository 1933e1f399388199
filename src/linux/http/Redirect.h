#pragma once

#include "platform/HttpMessage.h"
#include "util/Result.h"

namespace halvane::linux_http {

inline constexpr int kMostRedirects = 20;

/// Whether the reply sends its caller elsewhere: 301, 302, 303, 307 or 308 with a Location.
bool isRedirect(const platform::HttpResponse& response);

/// Turns `request` into the one that the redirect asks for. Another origin gets none of the header
/// fields that might carry a secret. Fails for an address that is not http(s), and for a body that
/// would have to be sent again and cannot, and for another scheme where the request forbids that.
util::Result<void> applyRedirect(platform::HttpRequest& request, const platform::HttpResponse& response);

}  // namespace halvane::linux_http
