#pragma once

#include "platform/HttpMessage.h"
#include "util/Result.h"
#include "util/Value.h"

#include <set>
#include <string>

namespace halvane::http {

/// Judges replies and decodes their bodies. Immutable once it is in use; any thread.
class ResponseSerializer {
public:
    virtual ~ResponseSerializer() = default;

    /// Replies with a body of another content type are refused; an empty set accepts all.
    void setAcceptableContentTypes(std::set<std::string> types) { acceptableContentTypes_ = std::move(types); }

    /// Errors: BadServerResponse for a status outside 200-299, CannotDecode for a content type that is
    /// not accepted or a body that does not decode.
    [[nodiscard]] util::Result<util::Value> decode(const platform::HttpResponse& response, const util::Bytes& body) const;

protected:
    [[nodiscard]] virtual util::Result<util::Value> decodeBody(const platform::HttpResponse& response, const util::Bytes& body) const = 0;

private:
    std::set<std::string> acceptableContentTypes_;
};

}  // namespace halvane::http
