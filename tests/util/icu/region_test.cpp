#include "util/icu/Region.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace halvane::util {
namespace {

/// What the test process's environment says in these names, until the end of the test.
class Environment {
public:
    Environment() {
        for (const char* name : kNames) {
            const char* value = std::getenv(name);
            before_.emplace_back(value == nullptr ? std::nullopt : std::optional<std::string>(value));
        }
    }
    ~Environment() {
        for (std::size_t i = 0; i < std::size(kNames); ++i) set(kNames[i], before_[i]);
        tzset();
    }
    static void set(const char* name, const std::optional<std::string>& value) { value ? setenv(name, value->c_str(), 1) : unsetenv(name); }
    static void clear() {
        for (const char* name : kNames) unsetenv(name);
    }

private:
    static constexpr const char* kNames[] = {"LC_ALL", "LC_TIME", "LANG", "TZ"};
    std::vector<std::optional<std::string>> before_;
};

TEST(Region, follows_the_environment_as_the_c_library_does) {
    using Text = std::optional<std::string>;
    const std::tuple<const char*, Text, Text, Text, const char*> rows[] = {
        // LC_ALL, LC_TIME, LANG
        {"nothing said", {}, {}, {}, "en_US_POSIX"},
        {"plain", {}, {}, "C", "en_US_POSIX"},
        {"plain in UTF-8", {}, {}, "C.UTF-8", "en_US_POSIX"},
        {"by its other name", {}, {}, "POSIX", "en_US_POSIX"},
        {"with encoding", {}, {}, "zh_CN.UTF-8", "zh_CN"},
        {"language alone", {}, {}, "de", "de"},
        {"times apart", {}, "de_DE.UTF-8", "en_US.UTF-8", "de_DE"},
        {"above all", "zh_TW.UTF-8", "de_DE.UTF-8", "en_US.UTF-8", "zh_TW"},
        {"empty is not said", "", "", "fr_FR.UTF-8", "fr_FR"},
        {"plain with a modifier", {}, {}, "C@x", "en_US_POSIX"},
        {"a script", {}, {}, "sr_RS.UTF-8@latin", "sr_Latn_RS"},
        {"a script of the language alone", {}, {}, "uz@cyrillic", "uz_Cyrl"},
        {"another modifier", {}, {}, "de_DE@euro", "de_DE"},
    };
    const Environment restored;
    for (const auto& [name, all, time, language, locale] : rows) {
        Environment::clear();
        Environment::set("LC_ALL", all);
        Environment::set("LC_TIME", time);
        Environment::set("LANG", language);
        Environment::set("TZ", "Asia/Tokyo");
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
    const Environment restored;
    for (const auto& [name, zone, expected] : rows) {
        Environment::set("TZ", zone);
        EXPECT_EQ(Region::current().timeZone, expected) << name;
    }
    // Whatever it links to, or a file that is not there, it is never the path.
    for (const char* path : {":/etc/localtime", "/usr/share/zoneinfo/No/Where", "/"}) {
        Environment::set("TZ", path);
        EXPECT_EQ(Region::current().timeZone.find("localtime"), std::string::npos) << path;
        EXPECT_NE(Region::current().timeZone.front(), '/') << path;
    }
}

}  // namespace
}  // namespace halvane::util
