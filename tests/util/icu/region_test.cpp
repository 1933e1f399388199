#include "util/icu/Region.h"

#include "support/TestEnvironment.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

namespace halvane::util {
namespace {

using test::TestEnvironment;

const std::vector<std::string> kNames = {"LC_ALL", "LC_TIME", "LANG", "TZ"};

TEST(Region, follows_the_environment_as_the_c_library_does) {
    const std::tuple<const char*, TestEnvironment::Values, const char*> rows[] = {
        {"nothing said", {}, "en_US_POSIX"},
        {"plain", {{"LANG", "C"}}, "en_US_POSIX"},
        {"plain in UTF-8", {{"LANG", "C.UTF-8"}}, "en_US_POSIX"},
        {"by its other name", {{"LANG", "POSIX"}}, "en_US_POSIX"},
        {"with encoding", {{"LANG", "zh_CN.UTF-8"}}, "zh_CN"},
        {"language alone", {{"LANG", "de"}}, "de"},
        {"times apart", {{"LC_TIME", "de_DE.UTF-8"}, {"LANG", "en_US.UTF-8"}}, "de_DE"},
        {"above all", {{"LC_ALL", "zh_TW.UTF-8"}, {"LC_TIME", "de_DE.UTF-8"}, {"LANG", "en_US.UTF-8"}}, "zh_TW"},
        {"empty is not said", {{"LC_ALL", ""}, {"LC_TIME", ""}, {"LANG", "fr_FR.UTF-8"}}, "fr_FR"},
        {"plain with a modifier", {{"LANG", "C@x"}}, "en_US_POSIX"},
        {"a script", {{"LANG", "sr_RS.UTF-8@latin"}}, "sr_Latn_RS"},
        {"a script of the language alone", {{"LANG", "uz@cyrillic"}}, "uz_Cyrl"},
        {"another modifier", {{"LANG", "de_DE@euro"}}, "de_DE"},
    };
    for (auto [name, values, locale] : rows) {
        values["TZ"] = "Asia/Tokyo";
        const TestEnvironment environment(kNames, values);
        EXPECT_EQ(Region::current().locale, locale) << name;
        EXPECT_EQ(Region::current().timeZone, "Asia/Tokyo") << name;
    }
}

TEST(Region, knows_the_zone_by_its_name_its_file_or_its_distance) {
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"a name", "Europe/Berlin", "Europe/Berlin"},
        {"a name behind a colon", ":America/New_York", "America/New_York"},
        {"a file", "/usr/share/zoneinfo/Asia/Tokyo", "Asia/Tokyo"},
        {"a file behind a colon", ":/usr/share/zoneinfo/Europe/Berlin", "Europe/Berlin"},
        {"a file of another set", "/usr/share/zoneinfo/posix/Europe/Berlin", "Europe/Berlin"},
        {"a rule", "XYZ-9", "GMT+09:00"},
        {"a rule in quotes", "<-0330>3:30", "GMT-03:30"},
    };
    for (const auto& [name, zone, expected] : rows) {
        const TestEnvironment environment(kNames, {{"TZ", zone}});
        EXPECT_EQ(Region::current().timeZone, expected) << name;
    }
    // Whatever it links to, or a file that is not there, it is never the path.
    for (const char* path : {":/etc/localtime", "/usr/share/zoneinfo/No/Where", "/"}) {
        const TestEnvironment environment(kNames, {{"TZ", path}});
        EXPECT_EQ(Region::current().timeZone.find("localtime"), std::string::npos) << path;
        EXPECT_NE(Region::current().timeZone.front(), '/') << path;
    }
}

}  // namespace
}  // namespace halvane::util
