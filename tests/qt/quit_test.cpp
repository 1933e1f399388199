#include "qt/QtApplication.h"
#include "qt/QtMainLoop.h"
#include "ui/widgets/HDCLBaseWindow.h"

#include <gtest/gtest.h>
#include <QTest>
#include <csignal>
#include <functional>

namespace halvane::test {
namespace {

/// Refuses to close, and notes that it was asked.
class Refusing final : public ui::WindowDelegate {
public:
    bool windowShouldClose(ui::HDCLBaseWindow&) override {
        ++asked;
        return false;
    }
    int asked = 0;
};

struct Case {
    const char* name;
    std::function<void(ui::HDCLBaseWindow&)> quit;
};

void PrintTo(const Case& row, std::ostream* out) { *out << row.name; }

class QuitTest : public testing::TestWithParam<Case> {};

TEST_P(QuitTest, ends_with_code_0_although_a_window_refuses_to_close) {
    Refusing refusing;
    ui::HDCLBaseWindow window;
    window.setDelegate(&refusing);
    window.makeKeyAndOrderFront();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));

    qt::QtMainLoop loop;
    loop.async([&window] { GetParam().quit(window); });
    loop.after(std::chrono::seconds(5), [] { QCoreApplication::exit(99); });
    EXPECT_EQ(QCoreApplication::exec(), 0);
    EXPECT_EQ(refusing.asked, 0);
    EXPECT_TRUE(window.isVisible());
}

INSTANTIATE_TEST_SUITE_P(Ways, QuitTest,
                         testing::Values(Case{"terminate_signal", [](auto&) { std::raise(SIGTERM); }},
                                         Case{"interrupt_signal", [](auto&) { std::raise(SIGINT); }},
                                         Case{"quit_of_the_application", [](auto&) { QCoreApplication::quit(); }},
                                         Case{"ctrl_q", [](auto& window) { QTest::keyClick(&window, Qt::Key_Q, Qt::ControlModifier); }}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(SignalsTest, signal_that_came_before_the_loop_ends_it_at_once) {
    std::raise(SIGTERM);
    qt::QtMainLoop loop;
    loop.after(std::chrono::seconds(5), [] { QCoreApplication::exit(99); });
    EXPECT_EQ(QCoreApplication::exec(), 0);
}

TEST(SignalsTest, closing_the_last_window_does_not_quit) {
    ui::HDCLBaseWindow window;
    window.orderFront();
    qt::QtMainLoop loop;
    loop.async([&window] { window.close(); });
    loop.after(std::chrono::milliseconds(50), [] { QCoreApplication::exit(7); });
    EXPECT_EQ(QCoreApplication::exec(), 7);
}

}  // namespace
}  // namespace halvane::test
