#include "http/JsonResponseSerializer.h"
#include "http/PropertyListResponseSerializer.h"
#include "http/RawResponseSerializer.h"
#include "http/XmlResponseSerializer.h"
#include "util/Json.h"

#include <gtest/gtest.h>

namespace halvane::http {
namespace {

using util::UrlError;

std::string shown(const util::Result<std::optional<ResponseObject>>& decoded) {
    if (!decoded) return std::to_string(decoded.error().code) + " " + decoded.error().body.value_or("-");
    if (!*decoded) return "absent";
    if (const auto* root = (*decoded)->xml()) return "<" + root->name + ">";
    if (const auto* bytes = (*decoded)->bytes()) return "bytes " + *bytes;
    return util::Json::encode(*(*decoded)->value());
}

TEST(ResponseSerializers, accept_decode_or_refuse_with_the_body) {
    const RawResponseSerializer raw;
    const JsonResponseSerializer json(JsonReading::AllowFragments, EmptyBody::Absent);
    const JsonResponseSerializer strict;
    const PropertyListResponseSerializer plist;
    const XmlResponseSerializer xml;
    constexpr const char* kList = "<plist version=\"1.0\"><array><integer>1</integer></array></plist>";
    struct Row {
        const char* name;
        const ResponseSerializer& serializer;
        int status;
        const char* type;
        std::string body;
        std::string expected;
    };
    const Row rows[] = {
        {"raw", raw, 200, "", "x", "bytes x"},
        {"raw, any type", raw, 299, "image/png", "", "bytes "},
        {"raw, status", raw, 300, "", "moved", "-1011 moved"},
        {"JSON", json, 200, "application/json; charset=utf-8", "{\"a\":1}", "{\"a\":1}"},
        {"JSON, other names", json, 201, "TEXT/JAVASCRIPT", "[]", "[]"},
        {"JSON, fragment", json, 200, "text/json", "7", "7"},
        {"JSON, null is there", json, 200, "text/json", "null", "null"},
        {"JSON, empty", json, 200, "application/json", "", "absent"},
        {"JSON, one space", json, 200, "application/json", " ", "absent"},
        {"JSON, empty of another type", json, 200, "text/html", "", "absent"},
        {"JSON, another type", json, 200, "text/html", "{}", "-1016 {}"},
        {"JSON, no type", json, 200, "", "{}", "-1016 {}"},
        {"JSON, broken", json, 200, "application/json", "{", "-1016 {"},
        {"JSON, status before type", json, 500, "text/html", "{}", "-1011 {}"},
        {"JSON, status", json, 404, "application/json", "{\"e\":1}", "-1011 {\"e\":1}"},
        {"strict JSON, fragment", strict, 200, "application/json", "7", "-1016 7"},
        {"strict JSON, no content", strict, 204, "", "", "null"},
        {"strict JSON, empty", strict, 200, "", "", "-1016 "},
        {"plist", plist, 200, "application/x-plist", kList, "[1]"},
        {"plist, empty", plist, 200, "application/x-plist", "", "-1016 "},
        {"plist, of XML type", plist, 200, "text/xml", kList, std::string("-1016 ") + kList},
        {"XML", xml, 200, "text/xml", "<a/>", "<a>"},
        {"XML, other name", xml, 200, "application/xml", "<?xml version=\"1.0\"?><a>1</a>", "<a>"},
        {"XML, empty", xml, 204, "", "", "absent"},
        {"XML, broken", xml, 200, "text/xml", "<a>", "-1016 <a>"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        platform::HttpResponse response{row.status, "http://h", {}};
        if (*row.type != '\0') response.headers.set("Content-Type", row.type);
        EXPECT_EQ(shown(row.serializer.decode(response, row.body)), row.expected);
    }
}

}  // namespace
}  // namespace halvane::http
