#include "linux/device/LinuxSystemControl.h"
#include "linux/device/RecordedMachine.h"
#include "systools/ChildProgram.h"
#include "systools/scutil/ScutilTool.h"
#include "systools/sysctl/SysctlTool.h"
#include "systools/system_profiler/SystemProfilerTool.h"
#include "util/Text.h"

#include <gtest/gtest.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <sstream>

namespace halvane::systools {
namespace {

using test::inToolRoot;
using test::RecordedMachine;
using test::runProgram;

/// Exit code, output, and whether something was said on standard error.
struct Outcome {
    int code = 0;
    std::string out;
    bool complained = false;

    friend bool operator==(const Outcome&, const Outcome&) = default;
    friend void PrintTo(const Outcome& outcome, std::ostream* to) {
        *to << outcome.code << " \"" << outcome.out << "\"" << (outcome.complained ? " and a message" : "");
    }
};

template <typename Run>
Outcome outcome(const Run& tool, const Arguments& arguments) {
    std::ostringstream out;
    std::ostringstream err;
    const int code = tool.run(arguments, out, err);
    return {code, out.str(), !err.str().empty()};
}

TEST(Scutil, tells_each_name_of_the_computer) {
    struct Row {
        const char* name;
        RecordedMachine::Files files;
        const char* key;
        Outcome expected;
    };
    const Row rows[] = {
        {"plain", {{"proc/sys/kernel/hostname", "mac-mini\n"}}, "LocalHostName", {0, "mac-mini\n"}},
        {"with a domain", {{"proc/sys/kernel/hostname", "pc7.example.com\n"}}, "LocalHostName", {0, "pc7\n"}},
        {"whole", {{"proc/sys/kernel/hostname", "pc7.example.com\n"}}, "HostName", {0, "pc7.example.com\n"}},
        {"blanks and accents", {{"proc/sys/kernel/hostname", "chen's pc\xC3\xA9\n"}}, "LocalHostName", {0, "chen-s-pc--\n"}},
        {"given by the owner",
         {{"proc/sys/kernel/hostname", "pc7\n"}, {"etc/machine-info", "PRETTY_HOSTNAME=\"Chen's 电脑\"\n"}},
         "ComputerName",
         {0, "Chen's 电脑\n"}},
        {"not given", {{"proc/sys/kernel/hostname", "pc7\n"}}, "ComputerName", {0, "pc7\n"}},
        {"nobody has set it", {{"proc/sys/kernel/hostname", "(none)\n"}}, "LocalHostName", {1, "", true}},
        {"unreadable", {}, "HostName", {1, "", true}},
        {"nothing before the dot", {{"proc/sys/kernel/hostname", ".local\n"}}, "LocalHostName", {1, "", true}},
        {"no such name", {{"proc/sys/kernel/hostname", "pc7\n"}}, "Hostname", {64, "", true}},
    };
    for (const auto& row : rows) {
        const RecordedMachine machine(row.files);
        EXPECT_EQ(outcome(ScutilTool(machine.files()), {"--get", row.key}), row.expected) << row.name;
    }
}

TEST(Sysctl, prints_what_is_known_and_complains_of_the_rest) {
    const RecordedMachine machine{{"proc/sys/kernel/hostname", "pc7\n"}, {"proc/meminfo", "MemTotal: 1048576 kB\n"}};
    const linux::LinuxSystemControl control(machine.files());
    const SysctlTool tool(control, {"hw.memsize", "hw.model", "kern.hostname"});
    const std::tuple<Arguments, Outcome> rows[] = {
        {{"-n", "hw.memsize"}, {0, "1073741824\n"}},
        {{"hw.memsize", "kern.hostname"}, {0, "hw.memsize: 1073741824\nkern.hostname: pc7\n"}},
        {{"-n", "hw.model"}, {1, "", true}},
        {{"-n", "hw.nothing", "kern.hostname"}, {1, "pc7\n", true}},
        {{"-a"}, {0, "hw.memsize: 1073741824\nkern.hostname: pc7\n"}},
        {{}, {64, "", true}},
        {{"-n"}, {64, "", true}},
        {{"-w", "kern.hostname=x"}, {64, "", true}},
        {{"-a", "kern.hostname"}, {64, "", true}},
        {{""}, {64, "", true}},
    };
    for (const auto& [arguments, expected] : rows) EXPECT_EQ(outcome(tool, arguments), expected) << testing::PrintToString(arguments);
}

TEST(SystemProfiler, what_follows_the_first_colon_is_the_capacity) {
    const SystemProfilerTool tool([] { return std::optional<std::uint64_t>(512110190592); });
    const auto report = outcome(tool, {"SPStorageDataType", "|", "grep", "'Capacity'"});
    EXPECT_EQ(report.code, 0);
    EXPECT_TRUE(report.complained) << "a shell's words reached a program without a shell";
    const auto pieces = util::split(report.out, ':');
    ASSERT_EQ(pieces.size(), 2U);
    EXPECT_EQ(util::replaced(util::withoutLineFeeds(pieces[1]), " ", ""), "476.94GB");

    EXPECT_EQ(outcome(tool, {"SPStorageDataType"}), (Outcome{0, "Capacity: 476.94 GB\n"}));
    EXPECT_EQ(outcome(tool, {"SPHardwareDataType"}), (Outcome{64, "", true}));
    EXPECT_EQ(outcome(tool, {}), (Outcome{64, "", true}));
    EXPECT_EQ(outcome(SystemProfilerTool([] { return std::optional<std::uint64_t>(); }), {"SPStorageDataType"}), (Outcome{1, "", true}));
}

TEST(FactsPrograms, real_programs_tell_the_truth_about_this_machine) {
    char name[256] = "";
    ASSERT_EQ(::gethostname(name, sizeof name - 1), 0);
    EXPECT_EQ(runProgram(inToolRoot("usr/sbin/scutil"), {"--get", "HostName"}).out, std::string(name) + "\n");

    const auto memory = runProgram(inToolRoot("usr/sbin/sysctl"), {"-n", "hw.memsize"});
    const auto usable = static_cast<double>(::sysconf(_SC_PHYS_PAGES)) * static_cast<double>(::sysconf(_SC_PAGESIZE));
    EXPECT_GE(std::stod(memory.out), usable);
    EXPECT_LT(std::stod(memory.out), usable * 1.4);

    struct statvfs disk {};
    ASSERT_EQ(::statvfs("/", &disk), 0);
    const auto report = runProgram(inToolRoot("usr/sbin/system_profiler"), {"SPStorageDataType"});
    EXPECT_NEAR(std::stod(util::split(report.out, ':').at(1)),
                static_cast<double>(disk.f_blocks) * static_cast<double>(disk.f_frsize) / (1 << 30), 0.01);
}

TEST(FactsPrograms, help_exit_codes_and_a_full_disk) {
    for (const char* program : {"usr/sbin/scutil", "usr/sbin/sysctl", "usr/sbin/system_profiler", "usr/bin/security"}) {
        const auto help = runProgram(inToolRoot(program), {"--help"});
        EXPECT_EQ(help.exitCode, 0) << program;
        EXPECT_NE(help.out.find("usage: "), std::string::npos) << program;
        EXPECT_EQ(help.err, "") << program;
        const auto nothing = runProgram(inToolRoot(program), {});
        EXPECT_EQ(nothing.exitCode, 64) << program;
        EXPECT_EQ(nothing.out, "") << program;
        EXPECT_NE(nothing.err.find("usage: "), std::string::npos) << program;
        const auto full = runProgram("sh", {"-c", "exec \"$0\" --help > /dev/full", inToolRoot(program)});
        EXPECT_EQ(full.exitCode, 1) << program << " said nothing of output that it could not write";
    }
}

}  // namespace
}  // namespace halvane::systools
