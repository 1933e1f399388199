#include "platform/HttpMessage.h"

#include <gtest/gtest.h>

namespace halvane::platform {
namespace {

TEST(HttpMessage, suggested_file_names_stay_inside_one_directory) {
    struct Row {
        const char* name;
        const char* url;
        const char* disposition;
        const char* expected;
    };
    const Row rows[] = {
        {"from the address", "http://h/certs/chen.xiao.p12?x=/y", nullptr, "chen.xiao.p12"},
        {"escaped in the address", "http://h/a%20b%2Fc.p12", nullptr, "c.p12"},
        {"no path", "http://h", nullptr, "Unknown"},
        {"directory", "http://h/a/", nullptr, "Unknown"},
        {"dots in the address", "http://h/a/%2e%2e", nullptr, "Unknown"},
        {"named", "http://h/x", "attachment; filename=chen.pfx", "chen.pfx"},
        {"quoted", "http://h/x", "attachment; filename=\"a;b\\\"c.pfx\"; size=3", "a;b\"c.pfx"},
        {"extended wins", "http://h/x", "attachment; filename=a.pfx; filename*=UTF-8''%E8%81%8C.pfx", "职.pfx"},
        {"climbing", "http://h/x", "attachment; filename=\"../../.bashrc\"", ".bashrc"},
        {"parent", "http://h/x", "attachment; filename=\"..\"", "x"},
        {"back slashes", "http://h/x", "attachment; filename=\"C:\\\\evil\\\\n.pfx\"", "n.pfx"},
        {"unterminated", "http://h/x", "attachment; filename=\"open", "open"},
        {"nothing", "http://h/x", "attachment; filename=", "x"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        HttpResponse response{200, row.url, {}};
        if (row.disposition != nullptr) response.headers.set("content-disposition", row.disposition);
        EXPECT_EQ(response.suggestedFileName(), row.expected);
    }
}

TEST(HttpMessage, headers_compare_without_case_and_cannot_be_split) {
    HttpHeaders headers{{"Token-Id", "a"}, {"Accept", "x"}};
    headers.set("token-id", "b");
    headers.set("X-Evil", "1\r\nHost: other");
    headers.set("accept", "y\n");
    EXPECT_EQ(headers.fields(), (std::vector<HttpHeaders::Field>{{"Token-Id", "b"}}))
        << "what cannot be sent does not leave the older value";
}

TEST(HttpMessage, a_field_that_arrives_twice_becomes_one_list) {
    HttpHeaders headers;
    headers.append("Via", "a");
    headers.append("Date", "now");
    headers.append("vIA", "b");
    EXPECT_EQ(headers.fields(), (std::vector<HttpHeaders::Field>{{"Via", "a, b"}, {"Date", "now"}}));
}

TEST(HttpMessage, mime_type_drops_parameters_and_case) {
    HttpResponse response{200, "", {{"Content-Type", "Application/JSON ; charset=utf-8"}}};
    EXPECT_EQ(response.mimeType(), "application/json");
}

}  // namespace
}  // namespace halvane::platform
