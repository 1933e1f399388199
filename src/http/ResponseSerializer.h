#pragma once

#include "http/ResponseObject.h"
#include "platform/HttpMessage.h"
#include "util/Result.h"

#include <optional>
#include <set>
#include <string>

namespace halvane::http {

/// Judges replies and decodes their bodies. Immutable once it is in use; any thread.
class ResponseSerializer {
public:
    virtual ~ResponseSerializer() = default;

    /// Replies with a body of another content type are refused; an empty set accepts all.
    void setAcceptableContentTypes(std::set<std::string> types) { acceptableContentTypes_ = std::move(types); }

    /// Why the reply is not accepted, with its body: BadServerResponse for a status outside 200-299, CannotDecode for a
    /// content type that is not accepted.
    [[nodiscard]] std::optional<util::Error> refusalOf(const platform::HttpResponse& response, util::Bytes body) const;

    /// The object, or absent where the body holds none. Errors: those above, and CannotDecode, with the body too, when
    /// it does not decode.
    [[nodiscard]] util::Result<std::optional<ResponseObject>> decode(const platform::HttpResponse& response, util::Bytes body) const;

protected:
    [[nodiscard]] virtual util::Result<std::optional<ResponseObject>> decodeBody(const platform::HttpResponse& response,
                                                                                 const util::Bytes& body) const = 0;

private:
    [[nodiscard]] bool accepts(const platform::HttpResponse& response, const util::Bytes& body) const;

    std::set<std::string> acceptableContentTypes_;
};

}  // namespace halvane::http
