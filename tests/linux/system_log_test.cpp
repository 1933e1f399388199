#include "linux/base/Descriptor.h"
#include "linux/base/SystemLog.h"
#include "support/TemporaryDirectory.h"
#include "util/Text.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

namespace halvane::linux {
namespace {

/// Standard error leads into a file while this lives.
class CapturedStandardError {
public:
    explicit CapturedStandardError(const std::filesystem::path& file) : file_(file), kept_(::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3)) {
        const Descriptor opened(::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0600));
        ::dup2(opened.get(), STDERR_FILENO);
    }
    ~CapturedStandardError() { ::dup2(kept_.get(), STDERR_FILENO); }
    CapturedStandardError(const CapturedStandardError&) = delete;
    CapturedStandardError& operator=(const CapturedStandardError&) = delete;

    [[nodiscard]] std::string text() const {
        std::ostringstream all;
        all << std::ifstream(file_).rdbuf();
        return all.str();
    }

private:
    const std::filesystem::path file_;
    const Descriptor kept_;
};

class SystemLogTest : public testing::Test {
protected:
    const test::TemporaryDirectory directory;
    const SystemLog::Journal noJournal{.socket = directory.path() / "none", .stream = std::nullopt};

    std::string written(std::string_view line) {
        const CapturedStandardError captured(directory.path() / "stderr");
        SystemLog(noJournal).write(line);
        return captured.text();
    }
};

TEST_F(SystemLogTest, whatever_is_logged_is_one_line_of_clean_text) {
    const std::tuple<const char*, std::string, std::string> rows[] = {
        {"plain", "User cancelled", "User cancelled"},
        {"Chinese", "登录成功", "登录成功"},
        {"nothing", "", ""},
        {"several lines", "one\ntwo\r\n", R"(one\ntwo\x0D\n)"},
        {"terminal commands", "\x1B[2J\x7F\ttab",
         R"(\x1B[2J\x7F)"
         "\ttab"},
        {"NUL", std::string("a\0b", 3), R"(a\x00b)"},
        {"conversions", "%s %n %@", "%s %n %@"},
        {"no UTF-8", "a\xFF\xC3(", R"(a\xFF\xC3()"},
        {"character cut off", "\xE7\x99", R"(\xE7\x99)"},
        {"overlong, surrogate, beyond", "\xC0\xAF\xED\xA0\x80\xF4\x90\x80\x80", R"(\xC0\xAF\xED\xA0\x80\xF4\x90\x80\x80)"},
        {"four bytes", "\xF0\x9F\x98\x80", "\xF0\x9F\x98\x80"},
    };
    for (const auto& [name, line, expected] : rows) EXPECT_EQ(written(line), "halvane: " + expected + "\n") << name;
}

TEST_F(SystemLogTest, a_very_long_line_is_cut_at_a_character_and_says_so) {
    std::string line = "x";
    while (line.size() < 2 * SystemLog::kLongestLine) line += "职";
    const auto text = written(line);
    EXPECT_LT(text.size(), SystemLog::kLongestLine + 100);
    EXPECT_GT(text.size(), SystemLog::kLongestLine);
    EXPECT_TRUE(text.ends_with("… [cut]\n"));
    EXPECT_TRUE(util::isValidUtf8(text));
    EXPECT_EQ(written(std::string(SystemLog::kLongestLine, 'x')).find("[cut]"), std::string::npos);
}

TEST_F(SystemLogTest, standard_error_is_left_out_only_when_it_is_the_journal) {
    const auto file = directory.path() / "stderr";
    const CapturedStandardError captured(file);
    struct stat status {};
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    const auto stream = std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
    std::ofstream(directory.path() / "socket") << "";
    const auto socket = (directory.path() / "socket").string();

    SystemLog({.socket = socket, .stream = stream}).write("in the journal already");
    EXPECT_EQ(captured.text(), "");
    SystemLog({.socket = socket, .stream = "1:1"}).write("redirected");
    SystemLog({.socket = socket, .stream = std::nullopt}).write("started by hand");
    SystemLog({.socket = noJournal.socket, .stream = stream}).write("no journal runs");
    EXPECT_EQ(captured.text(), "halvane: redirected\nhalvane: started by hand\nhalvane: no journal runs\n");
}

TEST_F(SystemLogTest, lines_of_many_threads_stay_whole) {
    const CapturedStandardError captured(directory.path() / "stderr");
    SystemLog log(noJournal);
    {
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < 4; ++thread) {
            threads.emplace_back([&log, letter = static_cast<char>('a' + thread)] {
                for (int i = 0; i < 50; ++i) log.write(std::string(5000, letter));
            });
        }
    }
    std::istringstream lines(captured.text());
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        ASSERT_EQ(line.size(), 5009U);
        ASSERT_EQ(line.find_first_not_of(line.back(), 9), std::string::npos);
    }
    EXPECT_EQ(count, 200);
}

TEST_F(SystemLogTest, a_standard_error_that_nobody_reads_or_that_is_closed_harms_nothing) {
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    ::close(ends[0]);
    const int kept = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
    const auto previous = ::signal(SIGPIPE, SIG_DFL);
    ::dup2(ends[1], STDERR_FILENO);
    ::close(ends[1]);
    SystemLog(noJournal).write("the reader went away");

    ::close(STDERR_FILENO);
    SystemLog log(noJournal);
    // The next file that is opened takes the number; the log must not write into it.
    const int reused = ::open((directory.path() / "precious").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    log.write("must not land in a file");
    ::dup2(kept, STDERR_FILENO);
    ::close(kept);
    ::signal(SIGPIPE, previous);
    EXPECT_EQ(reused, STDERR_FILENO);
    EXPECT_EQ(std::filesystem::file_size(directory.path() / "precious"), 0U);
}

}  // namespace
}  // namespace halvane::linux
