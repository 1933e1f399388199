#include "http/PropertyListResponseSerializer.h"

#include "util/PropertyList.h"

namespace halvane::http {

util::Result<std::optional<ResponseObject>> PropertyListResponseSerializer::decodeBody(const platform::HttpResponse& /*response*/,
                                                                                       const util::Bytes& body) const {
    auto decoded = util::PropertyList::decode(body);
    if (!decoded) return decoded.error();
    return std::optional<ResponseObject>(*std::move(decoded));
}

}  // namespace halvane::http
