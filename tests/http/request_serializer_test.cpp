#include "http/FormRequestSerializer.h"
#include "http/JsonRequestSerializer.h"
#include "http/PropertyListRequestSerializer.h"
#include "util/PropertyList.h"

#include <gtest/gtest.h>

#include <memory>

namespace halvane::http {
namespace {

using util::Dictionary;
using util::Value;

std::string contentType(const platform::HttpRequest& request) {
    const auto* type = request.headers.find("Content-Type");
    return type == nullptr ? "" : *type;
}

TEST(FormRequest, parameters_are_written_as_servers_of_forms_read_them) {
    struct Row {
        const char* name;
        Dictionary parameters;
        const char* expected;
    };
    const Row rows[] = {
        {"nothing", {}, ""},
        {"keys in order", {{"b", 2}, {"a", 1}, {"B", 3}}, "B=3&a=1&b=2"},
        {"kinds", {{"f", false}, {"n", nullptr}, {"r", 0.5}, {"t", true}, {"x", ""}, {"z", -7}}, "f=0&n&r=0.5&t=1&x=&z=-7"},
        {"unreserved stays, with slash and question mark", {{"k", "aZ09-._~/?"}}, "k=aZ09-._~/?"},
        {"all else goes", {{"k", ":#[]@!$&'()*+,;= %\"\n"}}, "k=%3A%23%5B%5D%40%21%24%26%27%28%29%2A%2B%2C%3B%3D%20%25%22%0A"},
        {"UTF-8", {{"\xC3\xA9", "\xE8\x81\x8C"}}, "%C3%A9=%E8%81%8C"},
        {"list", {{"tag", Value::List{"b", "a"}}}, "tag%5B%5D=b&tag%5B%5D=a"},
        {"object", {{"user", Dictionary{{"name", "x"}, {"age", 3}}}}, "user%5Bage%5D=3&user%5Bname%5D=x"},
        {"deeper", {{"a", Dictionary{{"b", Value::List{Dictionary{{"c", 1}}, 2}}}}}, "a%5Bb%5D%5B%5D%5Bc%5D=1&a%5Bb%5D%5B%5D=2"},
        {"empty ones leave nothing", {{"a", Value::List{}}, {"b", Dictionary()}, {"c", 1}}, "c=1"},
        {"dates and bytes", {{"b", Value::Data{"\x01 z"}}, {"d", Value::Date{0}}}, "b=%01%20z&d=1970-01-01T00%3A00%3A00Z"},
    };
    const FormRequestSerializer serializer({{"X-Agent", "bench"}});
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const auto post = serializer.request("POST", "http://h/p", row.parameters);
        ASSERT_TRUE(post);
        EXPECT_EQ(post->body, row.expected);
        EXPECT_EQ(contentType(*post), "application/x-www-form-urlencoded");
        EXPECT_EQ(*post->headers.find("x-agent"), "bench");
        const auto get = serializer.request("GET", "http://h/p?q=1#f", row.parameters);
        EXPECT_EQ(get->url, "http://h/p?q=1" + (*row.expected == '\0' ? "" : "&" + std::string(row.expected)) + "#f");
        EXPECT_EQ(get->body + contentType(*get), "");
    }
}

TEST(RequestSerializers, the_method_says_where_parameters_go_and_the_kind_what_they_are) {
    struct Row {
        const char* name;
        std::unique_ptr<RequestSerializer> serializer;
        const char* type;
        std::string body;
        const char* typeWithoutParameters;
    };
    const Dictionary parameters{{"b", Value::List{1, "x"}}, {"a", 2}};
    const Row rows[] = {
        {"form", std::make_unique<FormRequestSerializer>(platform::HttpHeaders()), "application/x-www-form-urlencoded",
         "a=2&b%5B%5D=1&b%5B%5D=x", "application/x-www-form-urlencoded"},
        {"JSON", std::make_unique<JsonRequestSerializer>(platform::HttpHeaders()), "application/json", R"({"b":[1,"x"],"a":2})", ""},
        {"plist", std::make_unique<PropertyListRequestSerializer>(platform::HttpHeaders()), "application/x-plist",
         util::PropertyList::encode(parameters), ""},
    };
    for (const Row& row : rows) {
        for (const char* method : {"POST", "PUT", "PATCH"}) {
            SCOPED_TRACE(std::string(row.name) + " " + method);
            const auto request = row.serializer->request(method, "http://h/p", parameters);
            EXPECT_EQ(contentType(*request), row.type);
            EXPECT_EQ(request->body, row.body);
            const auto bare = row.serializer->request(method, "http://h/p", std::nullopt);
            EXPECT_EQ(contentType(*bare), row.typeWithoutParameters);
            EXPECT_EQ(bare->body, "");
        }
        for (const char* method : {"GET", "HEAD", "DELETE"}) {
            SCOPED_TRACE(std::string(row.name) + " " + method);
            const auto request = row.serializer->request(method, "http://h/p", parameters);
            EXPECT_EQ(request->url, "http://h/p?a=2&b%5B%5D=1&b%5B%5D=x");
            EXPECT_EQ(request->body + contentType(*request), "");
            EXPECT_EQ(row.serializer->request(method, "http://h/p", std::nullopt)->url, "http://h/p");
        }
    }
    EXPECT_EQ(util::PropertyList::decode(rows[2].body).value(), Value(parameters));
}

TEST(RequestSerializers, a_content_type_of_the_caller_stays_and_null_has_no_property_list) {
    JsonRequestSerializer json{platform::HttpHeaders()};
    json.setHeader("Content-Type", "application/json; charset=utf-8");
    EXPECT_EQ(contentType(*json.request("POST", "http://h", Dictionary{})), "application/json; charset=utf-8");
    EXPECT_EQ(json.request("POST", "http://h", Dictionary{{"a", nullptr}})->body, R"({"a":null})");
    const PropertyListRequestSerializer plist{platform::HttpHeaders()};
    for (const Dictionary& parameters :
         {Dictionary{{"a", nullptr}}, Dictionary{{"a", Value::List{nullptr}}}, Dictionary{{"a", Dictionary{{"b", nullptr}}}}}) {
        EXPECT_FALSE(plist.request("POST", "http://h", parameters));
    }
}

}  // namespace
}  // namespace halvane::http
