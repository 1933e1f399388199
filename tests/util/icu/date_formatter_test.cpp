#include "util/icu/DateFormatter.h"

#include "util/icu/Moments.h"

#include <gtest/gtest.h>

namespace halvane::util {
namespace {

using Style = DateFormatter::Style;

TEST(DateFormatter, writes_in_the_words_calendar_and_zone_of_the_region) {
    const std::tuple<const char*, const char*, const char*, const char*, const char*> rows[] = {
        {"en_US", "America/New_York", "yyyy-MM-dd HH:mm:ss", "2026-11-23 18:20:02 0", "2026-11-23 13:20:02"},
        {"en_US", "America/New_York", "yyyy-MM-dd HH:mm:ss", "2026-07-23 18:20:02 0", "2026-07-23 14:20:02"},
        {"zh_CN", "Asia/Shanghai", "EEEE h:mm a", "2026-11-23 18:20:02 8", "星期一 6:20 下午"},
        {"de_DE", "Europe/Berlin", "EEEE, d. MMMM", "2026-03-01 00:00:00 1", "Sonntag, 1. März"},
        {"th_TH", "Asia/Bangkok", "yyyy", "2026-11-23 18:20:02 7", "2569"},
        {"en_US", "UTC", "yyyy-MM-dd", "0001-01-01 00:00:00 0", "0001-01-03"},  // which the Julian calendar called so
        {"en_US", "UTC", "yyyy-MM-dd HH:mm", "1969-12-31 23:59:59 0", "1969-12-31 23:59"},
        {"en_US", "No/Where", "HH:mm zzz", "2026-11-23 18:20:02 0", "18:20 GMT"},
        {"nonsense", "UTC", "yyyy", "2026-11-23 18:20:02 0", "2026"},
        {"en_US", "UTC", "", "2026-11-23 18:20:02 0", ""},
        {"en_US", "UTC", "'say ''hi'''", "2026-11-23 18:20:02 0", "say 'hi'"},
        {"en_US", "UTC", "yyyy J", "2026-11-23 18:20:02 0", ""},
    };
    for (const auto& [locale, zone, format, moment, text] : rows)
        EXPECT_EQ(DateFormatter({locale, zone}, format).string(at(moment)), text) << locale << ", " << format;
}

TEST(DateFormatter, reads_what_follows_the_format_to_its_end) {
    const std::tuple<const char*, const char*, std::string, const char*> rows[] = {
        // zone, format, text, moment or nothing
        {"Asia/Shanghai", "yyyy-MM-dd HH:mm:ss", "2026-11-23 18:20:02", "2026-11-23 18:20:02 8"},
        {"America/New_York", "yyyy-MM-dd HH:mm:ss", "2026-07-23 18:20:02", "2026-07-23 18:20:02 -4"},
        {"Asia/Shanghai", "yyyy-MM-dd", "1969-12-31", "1969-12-31 00:00:00 8"},
        {"UTC", "yyyy-MM-dd", "2028-02-29", "2028-02-29 00:00:00 0"},
        {"UTC", "h:mm a", "12:05 AM", "1970-01-01 00:05:00 0"},
        {"UTC", "yyyy-MM-dd HH:mm", " 2026-2-3 4:05", "2026-02-03 04:05:00 0"},
        {"UTC", "yyyy-MM-dd", "2026.02.03", nullptr},
        {"UTC", "yyyy-MM-dd", "20260203", nullptr},
        {"Europe/Berlin", "yyyy-MM-dd HH:mm:ssZZZZZ", "2026-11-23 18:20:02-05:00", "2026-11-23 18:20:02 -5"},
        {"Europe/Berlin", "yyyy-MM-dd HH:mm", "2026-03-29 02:30", "2026-03-29 03:00:00 2"},  // skipped
        {"Europe/Berlin", "yyyy-MM-dd HH:mm", "2026-10-25 02:30", "2026-10-25 02:30:00 2"},  // the first of two
        {"America/Sao_Paulo", "yyyy-MM-dd", "2018-11-04", "2018-11-04 01:00:00 -2"},         // a day without midnight
        {"America/Havana", "yyyy-MM-dd", "2026-11-01", "2026-11-01 00:00:00 -4"},            // one with two
        {"UTC", "yyyy-MM-dd", "2026-02-29", nullptr},
        {"UTC", "yyyy-MM-dd", "2026-13-01", nullptr},
        {"UTC", "yyyy-MM-dd", "2026-00-10", nullptr},
        {"UTC", "yyyy-MM-dd HH:mm", "2026-11-23 24:00", nullptr},
        {"UTC", "yyyy-MM-dd HH:mm", "2026-11-23 12:60", nullptr},
        {"UTC", "yyyy-MM-dd", "2026-11-23 ", nullptr},
        {"UTC", "yyyy-MM-dd", "2026-11-23x", nullptr},
        {"UTC", "yyyy-MM-dd", "2026-11", nullptr},
        {"UTC", "yyyy-MM-dd", "", nullptr},
        {"UTC", "yyyy-MM-dd", "yesterday", nullptr},
        {"UTC", "yyyy-MM-dd", std::string("2026-11-23\0", 11), nullptr},
        {"UTC", "yyyy-MM-dd", "2026-11-\xFF", nullptr},
        {"UTC", "yyyy-MM-dd", "99999999999999999999-01-01", nullptr},
    };
    for (const auto& [zone, format, text, moment] : rows) {
        const auto read = DateFormatter({"en_US", zone}, format).date(text);
        EXPECT_EQ(read, moment == nullptr ? std::nullopt : std::optional(at(moment))) << zone << ", " << text;
    }
    EXPECT_FALSE(DateFormatter({"en_US", "UTC"}, "yyyy-MM-dd").date(std::string(10'000'000, '1')));
    EXPECT_EQ(DateFormatter({"zh_CN", "Asia/Shanghai"}, "M月d日 EEEE").date("11月26日 星期四"), at("1970-11-26 00:00:00 8"));
}

TEST(DateFormatter, styles_are_the_regions_own_and_stay_until_another_format_is_set) {
    const std::tuple<const char*, Style, Style, const char*> rows[] = {
        {"en_US", Style::Short, Style::Short, "11/23/26, 6:20\u202FPM"},  {"en_US", Style::Medium, Style::None, "Nov 23, 2026"},
        {"en_US", Style::Full, Style::None, "Monday, November 23, 2026"}, {"en_US", Style::None, Style::Medium, "6:20:02\u202FPM"},
        {"zh_CN", Style::Long, Style::Short, "2026年11月23日 18:20"},     {"zh_CN", Style::Full, Style::None, "2026年11月23日星期一"},
        {"de_DE", Style::Short, Style::Short, "23.11.26, 18:20"},         {"en_US", Style::None, Style::None, ""},
    };
    for (const auto& [locale, date, time, text] : rows) {
        DateFormatter formatter({locale, "UTC"}, "yyyy");
        formatter.setStyles(date, time);
        EXPECT_EQ(formatter.string(at("2026-11-23 18:20:02 0")), text) << locale;
        const std::string format = formatter.dateFormat();
        formatter.setDateFormat(format);  // in these languages nothing more belongs to a style
        EXPECT_EQ(formatter.string(at("2026-11-23 18:20:02 0")), text) << locale << ", " << format;
    }
}

TEST(DateFormatter, a_format_that_follows_a_style_is_written_as_ever) {
    for (const char* locale : {"he_IL@calendar=hebrew", "zh_CN@calendar=chinese", "ar_EG"}) {
        const Region region{locale, "UTC"};
        DateFormatter formatter(region, "yyyy");
        formatter.setStyles(Style::Full, Style::Full);
        formatter.setDateFormat("yyyy-MM-dd");
        const Moment moment = at("2026-11-23 18:20:02 0");
        EXPECT_EQ(formatter.string(moment), DateFormatter(region, "yyyy-MM-dd").string(moment)) << locale;
    }
}

TEST(DateFormatter, the_ends_of_time_can_be_written) {
    DateFormatter formatter({"en_US", "Asia/Shanghai"}, "G yyyy");
    EXPECT_EQ(formatter.string(Moment::max()), "AD 294247");
    EXPECT_EQ(formatter.string(Moment::min()), "BC 290303");
}

}  // namespace
}  // namespace halvane::util
