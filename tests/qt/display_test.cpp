#include "qt/QtDisplay.h"

#include "support/TestEnvironment.h"

#include <gtest/gtest.h>
#include <QByteArray>
#include <string>
#include <vector>

namespace halvane::test {
namespace {

const std::vector<std::string> kNames = {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"};

struct Case {
    const char* name;
    TestEnvironment::Values environment;
    const char* problem;  ///< a part of it; null: none
};

void PrintTo(const Case& row, std::ostream* out) { *out << row.name; }

class DisplayTest : public testing::TestWithParam<Case> {};

TEST_P(DisplayTest, names_what_keeps_windows_away) {
    const TestEnvironment environment(kNames, GetParam().environment);
    const auto problem = qt::displayProblem();
    ASSERT_EQ(problem.has_value(), GetParam().problem != nullptr) << problem.value_or("none");
    if (problem) {
        EXPECT_NE(problem->find(GetParam().problem), std::string::npos) << *problem;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Environments, DisplayTest,
    testing::Values(Case{"nothing_set", {}, "neither DISPLAY nor WAYLAND_DISPLAY"},
                    Case{"display_that_does_not_answer", {{"DISPLAY", ":65000"}}, "DISPLAY=\":65000\""},
                    Case{"display_that_is_no_display", {{"DISPLAY", "nonsense"}}, "DISPLAY=\"nonsense\""},
                    Case{"compositor_that_does_not_answer", {{"WAYLAND_DISPLAY", "wayland-none"}}, "wayland-none"},
                    Case{"compositor_name_longer_than_a_socket's", {{"WAYLAND_DISPLAY", "/" + std::string(200, 'x')}}, "xxx"},
                    Case{"x11_chosen_without_one", {{"QT_QPA_PLATFORM", "xcb"}}, "neither"},
                    Case{"x11_chosen_with_options", {{"QT_QPA_PLATFORM", "xcb:no-mitshm"}}, "neither"},
                    Case{"platform_without_a_server", {{"QT_QPA_PLATFORM", "offscreen"}}, nullptr},
                    Case{"second_choice_works", {{"QT_QPA_PLATFORM", "xcb;offscreen:size=1"}}, nullptr}),
    [](const auto& row) {
        std::string name = row.param.name;
        std::erase(name, '\'');
        return name;
    });

TEST(PlatformChoiceTest, leaves_the_choice_alone_where_no_x11_answers) {
    const TestEnvironment environment(kNames, {{"DISPLAY", ":65000"}});
    qt::choosePlatform();
    EXPECT_TRUE(qgetenv("QT_QPA_PLATFORM").isEmpty());
}

}  // namespace
}  // namespace halvane::test
