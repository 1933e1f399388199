#include "support/GoldenExchange.h"

#include <gtest/gtest.h>

namespace halvane::test {
namespace {

TEST(GoldenReader, every_recorded_file_reads_and_has_an_accepted_exchange) {
    const auto operations = goldenOperations();
    EXPECT_EQ(operations.size(), 10U);
    for (const auto& operation : operations) {
        SCOPED_TRACE(operation);
        EXPECT_NO_THROW(goldenExchange(operation));
    }
}

TEST(GoldenReader, tells_an_empty_header_a_forbidden_one_and_a_missing_body_apart) {
    const auto login = goldenExchange("login").request;
    EXPECT_EQ(login.headers.at(1), std::pair(std::string("token-id"), std::string()));
    EXPECT_TRUE(login.body->ends_with(R"("token":""})"));
    const auto download = goldenExchange("download_p12").request;
    EXPECT_EQ(download.absentHeaders, (std::vector<std::string>{"content-type", "token-id"}));
    EXPECT_FALSE(download.body);
}

TEST(GoldenReader, placeholders_match_any_text_but_literals_and_repetitions_only_themselves) {
    EXPECT_EQ(matched("a${X}c${X}", "abcb"), (GoldenValues{{"X", "b"}}));
    EXPECT_EQ(matched("${ALL}", std::string("\0\n", 2)), (GoldenValues{{"ALL", std::string("\0\n", 2)}}));
    EXPECT_FALSE(matched("a${X}c${X}", "abcd"));
    EXPECT_FALSE(matched("a${X}", "b"));
    EXPECT_FALSE(matched("a${X}c", "abcd"));
    EXPECT_FALSE(matched("a${X}", "ab", {{"X", "c"}}));
    EXPECT_THROW(static_cast<void>(filled("${Y}", {{"X", "1"}})), std::runtime_error);
}

}  // namespace
}  // namespace halvane::test
