#include "util/PackageVersion.h"

#include "support/ChildProcess.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <utility>
#include <vector>

namespace halvane::util {
namespace {

using Pair = std::pair<std::string, std::string>;

/// What the package manager itself says of each pair: "lt", "eq" or "gt".
std::vector<std::string> ordersBySystem(const std::vector<Pair>& pairs) {
    std::string lines;
    for (const auto& [a, b] : pairs) lines += a + " " + b + "\n";
    const char* script = "while read a b; do for o in lt eq gt; do dpkg --compare-versions $a $o $b && echo $o; done; done";
    test::ChildProcess child({"sh", "-c", script}, {}, lines);
    std::vector<std::string> orders;
    for (std::size_t i = 0; i < pairs.size(); ++i) orders.push_back(child.readLine());
    return orders;
}

std::string orderOf(const Pair& pair) {
    const auto a = PackageVersion::parse(pair.first);
    const auto b = PackageVersion::parse(pair.second);
    if (!a || !b) return "none";
    return *a == *b ? "eq" : *a < *b ? "lt" : *b < *a ? "gt" : "none";
}

TEST(PackageVersion, stands_where_the_package_manager_puts_it) {
    const std::vector<std::string> known = {"0~~",
                                            "0~",
                                            "0",
                                            "00",
                                            "0.0-0",
                                            "0a",
                                            "1.0~rc1",
                                            "1.0~rc1-1",
                                            "1.0",
                                            "1.0-1",
                                            "1.0-1+b1",
                                            "1.0-1.1",
                                            "1.0-10",
                                            "1.0a",
                                            "1.0aB",
                                            "1.0b",
                                            "1.0+x",
                                            "1.0.9",
                                            "1.0.10",
                                            "1.0.010",
                                            "2.1-1-1",
                                            "2026.10.1",
                                            "1:0.1",
                                            "01:0.1",
                                            "18446744073709551616",
                                            "18446744073709551617",
                                            "2:0"};
    std::vector<Pair> pairs;
    for (std::size_t i = 0; i + 1 < known.size(); ++i) pairs.emplace_back(known[i], known[i + 1]);
    std::mt19937 random(7);
    const auto piece = [&random](const std::string& characters) { return std::string(1, characters[random() % characters.size()]); };
    for (int i = 0; i < 80; ++i) {
        Pair pair{"1", "1"};
        for (auto* text : {&pair.first, &pair.second})
            for (int length = static_cast<int>(random() % 6); length > 0; --length) *text += piece("0019aZ.+~");
        pairs.push_back(pair);
    }
    const auto expected = ordersBySystem(pairs);
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        EXPECT_EQ(orderOf(pairs[i]), expected[i]) << pairs[i].first << " and " << pairs[i].second;
        const std::string turned = expected[i] == "lt" ? "gt" : expected[i] == "gt" ? "lt" : "eq";
        EXPECT_EQ(orderOf({pairs[i].second, pairs[i].first}), turned) << pairs[i].second << " and " << pairs[i].first;
    }
}

TEST(PackageVersion, takes_nothing_that_could_be_more_than_a_version) {
    for (const char* text : {"", "a", "v1.0", "1.0/../x", "1 0", "1.0\n", "1.0_2", "-1", "1.0-", ":1", "x:1", "1:", "1.0-1_2", "1.0-1:2",
                             "1.0\xC3\xA9", "--help", "4294967296:1"})
        EXPECT_FALSE(PackageVersion::parse(text)) << text;
    EXPECT_TRUE(PackageVersion::parse(std::string(128, '1')));
    EXPECT_FALSE(PackageVersion::parse(std::string(129, '1')));
}

}  // namespace
}  // namespace halvane::util
