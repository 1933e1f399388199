#include "http/ChainedBody.h"
#include "http/FormRequestSerializer.h"
#include "http/JsonRequestSerializer.h"
#include "http/MediaTypes.h"
#include "support/ScriptedTransport.h"
#include "util/Text.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace halvane::http {
namespace {

using util::Dictionary;
using util::Value;

/// The whole body, read in pieces of `piece` bytes.
std::string readAll(platform::HttpBodyStream& body, std::size_t piece) {
    std::array<char, 1000> buffer{};
    std::string whole;
    while (const auto count = body.read(buffer.data(), piece)) {
        if (*count == 0) return whole;
        whole.append(buffer.data(), *count);
    }
    return whole + " [failed]";
}

class MultipartTest : public testing::Test {
protected:
    MultipartFormData emptyForm() {
        return MultipartFormData([this](const auto& file) { return transport.fileBody(file); });
    }
    /// The request's body with "B" for its boundary.
    std::string bodyOf(const platform::HttpRequest& request, std::size_t piece = 1000) {
        const std::string type = *request.headers.find("Content-Type");
        EXPECT_TRUE(type.starts_with("multipart/form-data; boundary=")) << type;
        const std::string boundary = type.substr(type.find('=') + 1);
        const std::string whole = readAll(*request.bodyStream, piece);
        EXPECT_EQ(request.bodyStream->length(), whole.size());
        return util::replaced(whole, boundary, "B");
    }

    test::ScriptedTransport transport;
    FormRequestSerializer serializer{platform::HttpHeaders()};
};

TEST_F(MultipartTest, fields_and_files_go_out_part_by_part) {
    transport.files["/home/x/report.PDF"] = "%PDF";
    const Dictionary parameters{{"user", Dictionary{{"name", "x"}}}, {"bytes", Value::Data{std::string("\0\r\n", 3)}}, {"none", nullptr}};
    const auto request = serializer.multipartFormRequest("POST", "http://h/u", parameters, emptyForm(), [](MultipartFormData& form) {
        form.appendPartWithFormData("value", "field");
        form.appendPartWithFileData(std::make_shared<const util::Bytes>("a,b"), "table", "t.csv", "text/csv");
        EXPECT_TRUE(form.appendPartWithFileURL("/home/x/report.PDF", "report"));
        EXPECT_TRUE(form.appendPartWithFileURL("/home/x/report.PDF", "named", "other.bin", "application/x-own"));
        EXPECT_FALSE(form.appendPartWithFileURL("/home/x/gone", "gone"));
    });
    ASSERT_TRUE(request);
    EXPECT_EQ(request->method, "POST");
    const std::string expected =
        "--B\r\nContent-Disposition: form-data; name=\"bytes\"\r\n\r\n" + std::string("\0\r\n", 3) +
        "\r\n--B\r\nContent-Disposition: form-data; name=\"none\"\r\n\r\n"
        "\r\n--B\r\nContent-Disposition: form-data; name=\"user[name]\"\r\n\r\nx"
        "\r\n--B\r\nContent-Disposition: form-data; name=\"field\"\r\n\r\nvalue"
        "\r\n--B\r\nContent-Disposition: form-data; name=\"table\"; filename=\"t.csv\"\r\nContent-Type: text/csv\r\n\r\na,b"
        "\r\n--B\r\nContent-Disposition: form-data; name=\"report\"; filename=\"report.PDF\"\r\nContent-Type: application/pdf\r\n\r\n%PDF"
        "\r\n--B\r\nContent-Disposition: form-data; name=\"named\"; filename=\"other.bin\"\r\nContent-Type: application/x-own\r\n\r\n%PDF"
        "\r\n--B--\r\n";
    EXPECT_EQ(bodyOf(*request), expected);
    ASSERT_TRUE(request->bodyStream->rewind());
    EXPECT_EQ(bodyOf(*request, 1), expected) << "byte by byte, a second time";
}

TEST_F(MultipartTest, what_has_no_form_is_refused_like_in_other_requests) {
    for (const Value& odd : {Value(std::numeric_limits<double>::infinity()), Value(Value::Date{std::int64_t{1} << 60})}) {
        const Dictionary parameters{{"a", Value::List{odd}}};
        EXPECT_FALSE(serializer.multipartFormRequest("POST", "http://h/u", parameters, emptyForm(), [](MultipartFormData&) {}));
        EXPECT_FALSE(serializer.request("GET", "http://h/u", parameters));
    }
}

TEST_F(MultipartTest, names_forge_no_part) {
    const auto request = serializer.multipartFormRequest("POST", "http://h/u", std::nullopt, emptyForm(), [](MultipartFormData& form) {
        form.appendPartWithFileData(std::make_shared<const util::Bytes>(""), "a\"; x=\"\r\n", "f\"\n.txt", "text/plain\r\nX-Forged: 1");
    });
    EXPECT_EQ(bodyOf(*request),
              "--B\r\nContent-Disposition: form-data; name=\"a%22; x=%22%0D%0A\"; filename=\"f%22%0A.txt\"\r\n"
              "Content-Type: text/plainX-Forged: 1\r\n\r\n\r\n--B--\r\n");
}

TEST_F(MultipartTest, without_a_part_it_is_a_request_without_parameters) {
    const auto nothing = [](MultipartFormData&) {};
    const auto form = serializer.multipartFormRequest("POST", "http://h/u", Dictionary{}, emptyForm(), nothing);
    EXPECT_EQ(*form->headers.find("Content-Type"), "application/x-www-form-urlencoded");
    EXPECT_EQ(form->bodyStream, nullptr);
    const auto json =
        JsonRequestSerializer(platform::HttpHeaders()).multipartFormRequest("POST", "http://h/u", std::nullopt, emptyForm(), nothing);
    EXPECT_EQ(json->headers.find("Content-Type"), nullptr);
}

TEST(ChainedBody, fails_with_its_pieces_and_knows_no_length_that_they_do_not_know) {
    struct Broken final : platform::HttpBodyStream {
        [[nodiscard]] std::optional<std::uint64_t> length() const override { return std::nullopt; }
        std::optional<std::size_t> read(char*, std::size_t) override { return std::nullopt; }
        bool rewind() override { return false; }
    };
    ChainedBody body;
    body.append(std::make_shared<const util::Bytes>("ab"));
    EXPECT_EQ(body.length(), 2U);
    body.append(std::make_shared<Broken>());
    EXPECT_EQ(body.length(), std::nullopt);
    EXPECT_EQ(readAll(body, 1), "ab [failed]");
    EXPECT_FALSE(body.rewind());
}

TEST(MediaTypes, are_those_of_the_last_extension_in_any_case) {
    struct Row {
        const char* file;
        const char* type;
    };
    for (const Row& row :
         {Row{"a.txt", "text/plain"}, Row{"/x.y/A.JPEG", "image/jpeg"}, Row{"a.tar.gz", "application/gzip"},
          Row{"a.7z", "application/x-7z-compressed"}, Row{"a.zip", "application/zip"}, Row{"a", "application/octet-stream"},
          Row{".pdf", "application/octet-stream"}, Row{"a.pdf.unknown", "application/octet-stream"}}) {
        EXPECT_EQ(mediaTypeOf(row.file), row.type) << row.file;
    }
}

}  // namespace
}  // namespace halvane::http
