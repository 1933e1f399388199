#include "http/XmlResponseSerializer.h"

#include "util/Xml.h"

namespace halvane::http {

util::Result<std::optional<ResponseObject>> XmlResponseSerializer::decodeBody(const platform::HttpResponse& /*response*/,
                                                                              const util::Bytes& body) const {
    if (body.empty()) return std::optional<ResponseObject>();
    auto decoded = util::Xml::decode(body);
    if (!decoded) return decoded.error();
    return std::optional<ResponseObject>(*std::move(decoded));
}

}  // namespace halvane::http
