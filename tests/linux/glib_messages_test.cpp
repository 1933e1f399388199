#include "linux/GlibMessages.h"

#include "support/RecordingLog.h"

#include <glib.h>
#include <gtest/gtest.h>

namespace halvane::linux {
namespace {

TEST(GlibMessagesTest, warnings_come_to_the_log_however_a_library_says_them_and_words_for_debugging_do_not) {
    for (int time = 0; time < 2; ++time) {
        test::RecordingLog log;
        {
            const GlibMessages messages(log);
            g_log("GLib-GIO", G_LOG_LEVEL_WARNING, "the bus said %s%%", "不");
            g_log_structured("Gtk", G_LOG_LEVEL_CRITICAL, "MESSAGE", "assertion failed");
            g_log(nullptr, G_LOG_LEVEL_MESSAGE, "of nobody");
            g_log("GLib-GIO", G_LOG_LEVEL_DEBUG, "a detail");
            g_log("GLib-GIO", G_LOG_LEVEL_INFO, "a detail");
        }
        EXPECT_EQ(log.lines(), (std::vector<std::string>{"GLib-GIO: the bus said 不%", "Gtk: assertion failed", "GLib: of nobody"}));
        g_log("GLib-GIO", G_LOG_LEVEL_WARNING, "after the end, to standard error");
        EXPECT_EQ(log.lines().size(), 3u);
    }
}

}  // namespace
}  // namespace halvane::linux
