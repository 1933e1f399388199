#include "linux/device/LinuxSystemCounters.h"
#include "linux/device/RecordedMachine.h"

#include <gtest/gtest.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <atomic>
#include <thread>
#include <vector>

namespace halvane::linux {
namespace {

using test::RecordedMachine;

constexpr const char* kLaptop =
    "MemTotal:       16113932 kB\nMemFree:         1834568 kB\nMemAvailable:    9871044 kB\nBuffers:          498020 kB\n"
    "Active:          6022184 kB\nInactive:        5874136 kB\nActive(anon):    3701396 kB\nInactive(anon):        0 kB\n"
    "Active(file):    2320788 kB\nInactive(file):  5874136 kB\nSReclaimable:     604996 kB\nHugePages_Total:       0\n";

TEST(SystemCounters, memory_lists_map_to_the_counters_that_the_device_page_adds_up) {
    const RecordedMachine machine{{"proc/meminfo", kLaptop}};
    const auto counters = LinuxSystemCounters(machine.files()).memory();
    ASSERT_TRUE(counters);
    const auto inPage = static_cast<std::uint64_t>(::getpagesize()) / 1024;
    EXPECT_EQ(counters->free, 1834568 / inPage);
    EXPECT_EQ(counters->active, 6022184 / inPage);
    EXPECT_EQ(counters->inactive, 5874136 / inPage);
    EXPECT_EQ(counters->wired, (16113932U - 1834568 - 6022184 - 5874136) / inPage);
    EXPECT_EQ(counters->external, (2320788U + 5874136) / inPage);
    EXPECT_EQ(counters->purgeable, 604996 / inPage);
    EXPECT_EQ(counters->speculative + counters->compressor, 0U);
}

TEST(SystemCounters, odd_memory_texts_never_underflow_and_unreadable_ones_are_absent) {
    struct Row {
        const char* name;
        const char* text;
        std::optional<std::uint64_t> wired;
    };
    const Row rows[] = {
        {"container: the lists are the host's, the total its own", "MemTotal: 4096 kB\nMemFree: 8192 kB\nActive: 65536 kB\n", 0},
        {"old kernel without lists by kind", "MemTotal: 65536 kB\nMemFree: 0 kB\n", 65536 * 1024 / ::getpagesize()},
        {"empty", "", std::nullopt},
        {"no total", "MemFree: 8192 kB\n", std::nullopt},
        {"total of another unit", "MemTotal: 8192 pages\n", std::nullopt},
        {"negative and huge", "MemTotal: -5 kB\nMemFree: 99999999999999999999999 kB\n", std::nullopt},
        {"more bytes than there can be", "MemTotal: 18446744073709551615 kB\n", std::nullopt},
    };
    for (const auto& row : rows) {
        const RecordedMachine machine{{"proc/meminfo", row.text}};
        const auto counters = LinuxSystemCounters(machine.files()).memory();
        EXPECT_EQ(counters ? std::optional(counters->wired) : std::nullopt, row.wired) << row.name;
    }
    const RecordedMachine nothing;
    EXPECT_FALSE(LinuxSystemCounters(nothing.files()).memory());
}

std::string told(const std::optional<std::vector<platform::ProcessorCounters>>& processors) {
    if (!processors) return "absent";
    std::string text;
    for (const auto& each : *processors)
        text += std::to_string(each.user) + "/" + std::to_string(each.system) + "/" + std::to_string(each.idle) + "/" +
                std::to_string(each.nice) + " ";
    return text;
}

TEST(SystemCounters, processors_are_told_line_by_line) {
    const struct {
        const char* name;
        const char* text;
        const char* expected;
    } rows[] = {
        {"interrupts and stolen time are the system's, waiting is idle",
         "cpu  9 9 9 9 9 9 9 9 9 9\ncpu0 1 2 4 8 16 32 64 128 256 512\nintr 5\n", "1/228/24/2 "},
        {"two", "cpu  3 0 0 3 0\ncpu0 1 0 0 1 0\ncpu1 2 0 0 2 0\n", "1/0/1/0 2/0/2/0 "},
        {"a processor is switched off", "cpu  3 0 0 3 0\ncpu0 1 0 0 1 0\ncpu2 2 0 0 2 0\nctxt 7\n", "1/0/1/0 2/0/2/0 "},
        {"old kernel", "cpu 1 2 3 4\ncpu0 1 2 3 4\nintr 1\n", "1/3/4/2 "},
        {"cut short", "cpu 1 2 3 4\ncpu0 1 2", "1/0/0/2 "},
        {"words", "cpu 1\ncpu0 7 two 3 4\n", "7/0/0/0 "},
        {"no number at all", "cpu 1\ncpu0\ncpux 1 2 3 4\n", "absent"},
        {"more than fits", "cpu 1\ncpu0 99999999999999999999 2 3 4\n", "0/0/0/0 "},
        {"all together only", "cpu  9 9 9 9\nintr 1\n", "absent"},
        {"empty", "", "absent"},
    };
    for (const auto& row : rows) {
        const RecordedMachine machine{{"proc/stat", row.text}};
        const LinuxSystemCounters counters(machine.files());
        EXPECT_EQ(told(counters.processors()), row.expected) << row.name;
        EXPECT_EQ(counters.processorCount().has_value(), counters.processors().has_value()) << row.name;
    }
    const RecordedMachine nothing;
    EXPECT_FALSE(LinuxSystemCounters(nothing.files()).processors());
}

TEST(SystemCounters, texts_that_stay_open_are_read_anew) {
    RecordedMachine machine;
    const LinuxSystemCounters counters(machine.files());
    EXPECT_FALSE(counters.processors()) << "not there yet";
    machine.put("proc/stat", "cpu 1 0 0 1\ncpu0 1 0 0 1\n");
    EXPECT_EQ(told(counters.processors()), "1/0/1/0 ");
    std::string many = "cpu 0\n";
    for (int i = 0; i < 1000; ++i) many += "cpu" + std::to_string(i) + " 1 1 1 1\n";
    machine.put("proc/stat", many);
    EXPECT_EQ(counters.processorCount(), 1000U) << "longer than before";
    machine.put("proc/stat", "cpu 2 0 0 2\ncpu0 2 0 0 2\n");
    EXPECT_EQ(told(counters.processors()), "2/0/2/0 ") << "shorter than before";
    machine.put("proc/stat", std::string(SystemFiles::kLongestText + 1, ' '));
    EXPECT_FALSE(counters.processors()) << "without end";
    std::filesystem::remove(machine.files().whole("proc/stat"));
    machine.put("proc/stat", "cpu 3 0 0 3\ncpu0 3 0 0 3\n");
    EXPECT_EQ(told(counters.processors()), "3/0/3/0 ") << "another file in its place";
}

TEST(SystemCounters, several_threads_read_whole_texts) {
    const LinuxSystemCounters counters{SystemFiles()};
    const auto processors = counters.processorCount();
    std::atomic<int> torn{0};
    std::vector<std::thread> threads;
    for (int reader = 0; reader < 4; ++reader) {
        threads.emplace_back([&] {
            for (int time = 0; time < 200; ++time)
                if (counters.processorCount() != processors || !counters.memory()) ++torn;
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(torn, 0);
}

TEST(SystemCounters, this_machine_adds_up) {
    const LinuxSystemCounters counters{SystemFiles()};
    const auto memory = counters.memory();
    ASSERT_TRUE(memory);
    const auto total = static_cast<std::uint64_t>(::sysconf(_SC_PHYS_PAGES));
    EXPECT_NEAR(static_cast<double>(memory->free + memory->active + memory->inactive + memory->wired), static_cast<double>(total),
                static_cast<double>(total) / 100);

    const auto processors = counters.processors();
    ASSERT_TRUE(processors);
    EXPECT_EQ(processors->size(), static_cast<std::size_t>(::sysconf(_SC_NPROCESSORS_ONLN)));

    struct statfs status {};
    ASSERT_EQ(::statfs("/", &status), 0);
    const auto disk = counters.fileSystem("/");
    ASSERT_TRUE(disk);
    EXPECT_EQ(disk->blocks, static_cast<std::uint64_t>(status.f_blocks));
    EXPECT_GE(disk->freeBlocks, disk->availableBlocks);
    EXPECT_FALSE(counters.fileSystem("/no/such/place"));
}

}  // namespace
}  // namespace halvane::linux
