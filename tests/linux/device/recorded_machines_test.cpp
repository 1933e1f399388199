#include "device/HVDeviceInfoHelper.h"
#include "device/HVDeviceUsageInfoManager.h"
#include "linux/device/LinuxSystemControl.h"
#include "linux/device/LinuxSystemCounters.h"
#include "linux/device/RecordedMachine.h"
#include "support/FakeDevice.h"
#include "support/ManualMainLoop.h"

#include <gtest/gtest.h>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace halvane::test {
namespace {

std::string recorded(const std::string& file) {
    const std::filesystem::path path = std::filesystem::path(HALVANE_MACHINES_DIR) / file;
    std::ifstream stream(path, std::ios::binary);
    EXPECT_TRUE(stream) << path;
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// What a kind of machine shows on the device page, from its kernel's texts to the figures.
struct MachineRow {
    const char* name;
    int memoryBlocks;       ///< as the firmware built it
    const char* blockSize;  ///< hexadecimal
    const char* memorySize;
    const char *percentage, *used, *free, *total;
    std::uint32_t processors;
    const char* usageSinceStart;
};

class RecordedMachineTest : public testing::TestWithParam<MachineRow> {
protected:
    RecordedMachineTest() {
        machine.put("proc/meminfo", recorded(std::string(GetParam().name) + "/meminfo"));
        machine.put("proc/stat", recorded(std::string(GetParam().name) + "/stat"));
        machine.put("sys/devices/system/memory/block_size_bytes", GetParam().blockSize);
        for (int block = 0; block < GetParam().memoryBlocks; ++block)
            machine.put("sys/devices/system/memory/memory" + std::to_string(block) + "/state", "online\n");
    }

    RecordedMachine machine;
    FakeDevice other;
    linux::LinuxSystemCounters counters{machine.files()};
    device::HVDeviceInfoHelper helper{{other.launcher, other, other, other, counters, other, other.log, [](std::string_view) {}}};
};

TEST_P(RecordedMachineTest, memory_figures_are_those_of_the_kernel_to_the_digit) {
    other.launcher.outputs["/usr/sbin/sysctl"] = linux::LinuxSystemControl(machine.files()).valueByName("hw.memsize").value_or("none");
    EXPECT_EQ(helper.getMemorySize(), GetParam().memorySize);
    const auto info = helper.getMemoryInfo();
    const auto entry = [&info](const char* key) { return util::textOf(info.find(key)).value_or("absent"); };
    EXPECT_EQ(entry(device::kMemoryUsedPercentage), GetParam().percentage);
    EXPECT_EQ(entry(device::kMemoryUsedSize), GetParam().used);
    EXPECT_EQ(entry(device::kMemoryFreeSize), GetParam().free);
    EXPECT_EQ(entry(device::kMemoryTotleSize), GetParam().total);
}

TEST_P(RecordedMachineTest, every_processor_counts_and_none_of_the_other_lines) {
    EXPECT_EQ(counters.processorCount(), GetParam().processors);
    ManualMainLoop loop;
    device::HVDeviceUsageInfoManager sampler({loop, counters, helper, other.log});
    sampler.startCollectInfo();
    loop.advance(std::chrono::seconds(1));
    EXPECT_EQ(sampler.model().cpuUsagePercentage(), GetParam().usageSinceStart);
}

INSTANTIATE_TEST_SUITE_P(, RecordedMachineTest,
                         testing::Values(MachineRow{"laptop", 128, "8000000\n", "16GB", "62.71%", "9.11", "5.42", "14.53", 8, "5.58"},
                                         MachineRow{"server", 512, "80000000\n", "1024GB", "54.92%", "342.73", "281.37", "624.00", 256,
                                                    "4.26"},
                                         MachineRow{"container", 8, "80000000\n", "2GB", "52.05%", "0.44", "0.41", "0.85", 2, "0.64"},
                                         MachineRow{"virtual", 68, "8000000\n", "8GB", "37.43%", "1.30", "2.18", "3.48", 3, "11.48"}),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace halvane::test
