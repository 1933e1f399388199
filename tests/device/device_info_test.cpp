#include "device/HVDeviceInfoHelper.h"

#include "device/HVDeviceInfoModel.h"
#include "support/FakeDevice.h"

#include <gtest/gtest.h>

namespace halvane::device {
namespace {

using Text = std::optional<std::string>;

class DeviceInfoTest : public testing::Test {
protected:
    static std::string entry(const util::Dictionary& dictionary, const char* key) {
        return util::textOf(dictionary.find(key)).value_or("absent");
    }
    test::FakeDevice on;
};

TEST_F(DeviceInfoTest, memory_is_reckoned_in_single_precision_with_bare_free_pages) {
    struct Row {
        const char* name;
        platform::MemoryCounters pages;
        const char *percentage, *used, *free, *total;
    };
    const Row rows[] = {
        // T = 3,000,000 pages, C = 1,000,000: used 8,192,000,000 bytes, free 4,096,500,000.
        {"a laptop",
         {.free = 500'000, .active = 1'500'000, .inactive = 1'000'000, .wired = 500'000, .external = 900'000, .purgeable = 100'000},
         "66.66%",
         "7.63",
         "3.82",
         "11.44"},
        {"speculative and compressed pages count",
         {.active = 262'144, .speculative = 262'144, .compressor = 524'288},
         "100.00%",
         "4.00",
         "0.00",
         "4.00"},
        // A billion free pages are a billion bytes here.
        {"the free pages are bytes by mistake", {.free = 1'073'741'824, .active = 262'144}, "50.00%", "1.00", "1.00", "1.00"},
        {"more cache than memory in use", {.active = 100, .external = 262'244}, "-262144.00%", "-1.00", "1.00", "0.00"},
    };
    on.pageBytes = 1 << 30;
    on.memoryPages = platform::MemoryCounters{.active = 16'777'217};
    EXPECT_EQ(entry(on.helper.getMemoryInfo(), kMemoryTotleSize), "16777216.00") << "one more than single precision holds";
    on.pageBytes = 4096;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        on.memoryPages = row.pages;
        const auto info = on.helper.getMemoryInfo();
        EXPECT_EQ(entry(info, kMemoryUsedSize), row.used);
        EXPECT_EQ(entry(info, kMemoryFreeSize), row.free);
        EXPECT_EQ(entry(info, kMemoryTotleSize), row.total);
        EXPECT_EQ(entry(info, kMemoryUsedPercentage), row.percentage);
    }
}

TEST_F(DeviceInfoTest, without_counters_the_dictionaries_are_empty) {
    on.pageBytes.reset();
    EXPECT_TRUE(on.helper.getMemoryInfo().empty());
    on.pageBytes = 4096;
    on.memoryPages.reset();
    EXPECT_TRUE(on.helper.getMemoryInfo().empty());
    on.disk = platform::FileSystemCounters{.blocks = 10, .freeBlocks = 10};
    EXPECT_TRUE(on.helper.getDiskInfo().empty());
    on.disk = platform::FileSystemCounters{.blocks = 10, .freeBlocks = 11, .availableBlocks = 11};
    EXPECT_TRUE(on.helper.getDiskInfo().empty()) << "more free than there is";
    on.disk.reset();
    EXPECT_TRUE(on.helper.getDiskInfo().empty());
    const HVDeviceInfoModel model(on.helper);
    EXPECT_EQ(model.memoryUsagePercentage(), Text());
    EXPECT_EQ(model.diskTotleSize(), Text());
}

TEST_F(DeviceInfoTest, disk_sizes_are_whole_blocks_of_four_kibibytes) {
    struct Row {
        const char* name;
        platform::FileSystemCounters disk;
        const char *percentage, *used, *free, *total;
    };
    const Row rows[] = {
        {"half of what can be reached", {.blocks = 1'000'000, .freeBlocks = 500'000, .availableBlocks = 500'000}, "51%", "01", "01", "03"},
        {"a terabyte", {.blocks = 244'190'646, .freeBlocks = 183'142'985, .availableBlocks = 170'000'000}, "27%", "232", "648", "931"},
        {"less than a GiB", {.blocks = 100'000, .freeBlocks = 100'000, .availableBlocks = 50'000}, "1%", "00", "00", "00"},
        {"full", {.blocks = 262'144, .freeBlocks = 0, .availableBlocks = 0}, "101%", "01", "00", "01"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        on.disk = row.disk;
        const auto info = on.helper.getDiskInfo();
        EXPECT_EQ(entry(info, kDiskUsedPercentage), row.percentage);
        EXPECT_EQ(entry(info, kDiskUsedSize), row.used);
        EXPECT_EQ(entry(info, kDiskFreeSize), row.free);
        EXPECT_EQ(entry(info, kDiskTotleSize), row.total);
    }
}

TEST_F(DeviceInfoTest, installed_memory_is_cut_to_whole_gibibytes) {
    const std::pair<const char*, const char*> rows[] = {{"17179869184\n", "16GB"},
                                                        {"9126805504\n", "8GB"},
                                                        {"1073741823", "0GB"},
                                                        {"12 apples", "0GB"},
                                                        {"apples", "0GB"},
                                                        {"", "0GB"},
                                                        {"\xFF", "0GB"}};
    for (const auto& [output, size] : rows) {
        on.launcher.outputs["/usr/sbin/sysctl"] = output;
        EXPECT_EQ(on.helper.getMemorySize(), size) << output;
    }
    EXPECT_EQ(on.launcher.starts.back(), "/usr/sbin/sysctl -n hw.memsize");
}

TEST_F(DeviceInfoTest, mac_address_is_upper_case_or_a_printed_diagnostic) {
    EXPECT_EQ(on.helper.getMacAddress(), "A4:83:E7:01:0B:2C");
    EXPECT_EQ(on.printed, "");
    on.address = util::fileError(EPERM, "read");
    EXPECT_EQ(on.helper.getMacAddress(), Text());
    on.address = util::fileError(ENOMEM, "read");
    EXPECT_EQ(on.helper.getMacAddress(), Text());
    on.address = util::Bytes("\x01\x02");
    EXPECT_EQ(on.helper.getMacAddress(), Text());
    on.listLength.reset();
    EXPECT_EQ(on.helper.getMacAddress(), Text());
    on.interfaceIndex = 0;
    EXPECT_EQ(on.helper.getMacAddress(), Text());
    EXPECT_EQ(on.printed,
              "Error: sysctl, take 2"
              "Could not allocate memory. error!/n"
              "Error: sysctl, take 2"
              "Error: sysctl, take 1/n"
              "Error: if_nametoindex error/n");
}

TEST_F(DeviceInfoTest, registry_properties_end_at_their_first_nul_and_must_be_text) {
    struct Row {
        const char* name;
        std::optional<util::Value> property;
        Text expected;
    };
    const Row rows[] = {
        {"text", "C02XYZ", "C02XYZ"},
        {"bytes", util::Value::Data{util::Bytes("Mac14,2\0\0rest", 13)}, "Mac14,2"},
        {"bytes without an end", util::Value::Data{util::Bytes(4096, 'x')}, std::string(4096, 'x')},
        {"text that just fits", std::string(255, 'x'), std::string(255, 'x')},
        {"text that does not fit", std::string(256, 'x'), std::nullopt},
        {"not UTF-8", util::Value::Data{"\xFF\xFE"}, std::nullopt},
        {"number", 7, std::nullopt},
        {"absent", std::nullopt, std::nullopt},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        on.properties = {};
        if (row.property) on.properties.set("IOPlatformUUID", *row.property);
        EXPECT_EQ(on.helper.getUUID(), row.expected);
    }
}

TEST_F(DeviceInfoTest, summary_keeps_the_line_feed_after_the_host_name) {
    on.launcher.outputs = {{"/usr/sbin/scutil", "mac-mini\n"}, {"/usr/sbin/sysctl", "17179869184\n"}};
    on.disk = platform::FileSystemCounters{.blocks = 244'190'646, .freeBlocks = 1, .availableBlocks = 1};
    on.systemVersion = {{"ProductName", "Debian\n GNU/Linux"}, {"ProductVersion", "12\n"}};
    const auto summary = on.helper.getSPHardwareInfo();
    EXPECT_EQ(on.launcher.starts,
              (std::vector<std::string>{"/usr/sbin/scutil --get LocalHostName", "/usr/sbin/sysctl -n machdep.cpu.brand_string",
                                        "/usr/sbin/sysctl -n hw.memsize"}));
    EXPECT_EQ(summary.text, "mac-mini\n\nDebian GNU/Linux  12\n处理器：17179869184\n内存：16GB\n硬盘：931GB\n序列号：HV-0001GB");
    using Run = util::StyledText::Run;
    EXPECT_EQ(summary.runs, (std::vector<Run>{{0, 9, {.fontName = "Helvetica-Bold", .fontSize = 19}},
                                              {10, 20, {.fontName = "Helvetica-Bold", .fontSize = 13, .lineSpacing = 6}}}));
}

TEST_F(DeviceInfoTest, summary_of_a_machine_that_tells_nothing_stands_all_the_same) {
    on.properties = {};
    on.systemVersion = {};
    on.disk.reset();
    on.launcher.outputs = {{"/usr/sbin/scutil", "\xFF"}};
    EXPECT_EQ(on.helper.getSPHardwareInfo().text, "(null)\n(null)  (null)\n处理器：\n内存：0GB\n硬盘：(null)GB\n序列号：(null)GB");
    EXPECT_EQ(on.helper.getSPHardwareInfo().runs[0].length, 6U);
    EXPECT_TRUE(on.log.contains("/usr/sbin/sysctl"));
}

TEST_F(DeviceInfoTest, storage_size_is_the_second_piece_or_absent) {
    on.launcher.outputs["/usr/sbin/system_profiler"] = "Capacity: 500 GB\n: x";
    EXPECT_EQ(on.helper.getStorageSize(), "500GB");
    EXPECT_EQ(on.launcher.requests.back().arguments, (std::vector<std::string>{"SPStorageDataType", "|", "grep", "'Capacity'"}));
    on.launcher.outputs["/usr/sbin/system_profiler"] = "nothing here";
    EXPECT_EQ(on.helper.getStorageSize(), Text());
}

TEST_F(DeviceInfoTest, tools_are_started_with_exactly_these_arguments) {
    on.launcher.outputs = {
        {"/usr/bin/security", "ok\n"}, {"/usr/bin/profiles", ""}, {"/usr/sbin/networksetup", ""}, {"/usr/sbin/scutil", ""}};
    EXPECT_EQ(on.helper.findCert(), "ok\n");
    on.helper.delCertWithName("chen xiao");
    on.helper.removeMobileConfigWithIdentifier("com.example.wifi");
    on.helper.switchToNewWifiName("test dot1x");
    on.helper.closeNetworkService("Wi-Fi");
    on.helper.openNetworkService("Wi-Fi");
    (void)on.helper.getLocalHostName();
    EXPECT_EQ(on.launcher.starts,
              (std::vector<std::string>{
                  "/usr/bin/security find-identity", "/usr/bin/security delete-certificate -c chen xiao",
                  "/usr/bin/profiles remove -identifier com.example.wifi", "/usr/sbin/networksetup -setairportnetwork en0 test dot1x",
                  "/usr/sbin/networksetup -setnetworkserviceenabled Wi-Fi off", "/usr/sbin/networksetup -setnetworkserviceenabled Wi-Fi on",
                  "/usr/sbin/scutil --get LocalHostName"}));
    EXPECT_EQ(on.launcher.requests[1].arguments, (std::vector<std::string>{"delete-certificate", "-c", "chen xiao"}));
    EXPECT_EQ(on.launcher.requests[3].arguments, (std::vector<std::string>{"-setairportnetwork", "en0", "test dot1x"}));
    EXPECT_EQ(on.launcher.requests[4].arguments, (std::vector<std::string>{"-setnetworkserviceenabled", "Wi-Fi", "off"}));
}

TEST_F(DeviceInfoTest, the_certificates_password_is_in_no_argument_and_no_log) {
    on.launcher.outputs["/usr/bin/security"] = "1 identity imported.\n";
    EXPECT_EQ(on.helper.installCertWithPath("/tmp/a b.p12", "s3cret"), "1 identity imported.\n");
    const auto& request = on.launcher.requests.back();
    EXPECT_EQ(request.arguments,
              (std::vector<std::string>{"import", "/tmp/a b.p12", "-k", "login.keychain", "-P", "env:HALVANE_CERT_PASSWORD"}));
    EXPECT_EQ(request.environment, (std::vector<std::pair<std::string, std::string>>{{"HALVANE_CERT_PASSWORD", "s3cret"}}));
    EXPECT_EQ(on.log.lines(), std::vector<std::string>{"installCertResult:1 identity imported.\n"});
}

TEST_F(DeviceInfoTest, the_record_reads_the_machine_and_forgets_what_is_stored_but_for_the_processor) {
    on.launcher.outputs["/usr/sbin/scutil"] = "first\n";
    HVDeviceInfoModel model(on.helper);
    model.setLocalHostName("stored");
    model.setSerialNumber("stored");
    model.setMemoryTotleSize("stored");
    EXPECT_EQ(model.localHostName(), "first\n");
    on.launcher.outputs["/usr/sbin/scutil"] = "second\n";
    EXPECT_EQ(model.localHostName(), "second\n");
    EXPECT_EQ(model.serialNumber(), "HV-0001");
    EXPECT_EQ(model.memoryTotleSize(), "0GB");
    EXPECT_EQ(model.cpuUsagePercentage(), Text());
    model.setCpuUsagePercentage("12.34");
    EXPECT_EQ(model.cpuUsagePercentage(), "12.34");
}

TEST_F(DeviceInfoTest, every_field_of_the_record_reads_its_own_fact) {
    on.launcher.outputs = {{"/usr/sbin/scutil", "host\n"}, {"/usr/sbin/sysctl", "17179869184\n"}};
    on.properties.set("IOPlatformUUID", "uuid");
    on.memoryPages = platform::MemoryCounters{.free = 1'073'741'824, .active = 262'144};
    on.disk = platform::FileSystemCounters{.blocks = 244'190'646, .freeBlocks = 183'142'985, .availableBlocks = 170'000'000};
    const HVDeviceInfoModel model(on.helper);
    EXPECT_EQ(model.localHostName(), "host\n");
    EXPECT_EQ(model.cpuBaseInfo(), "17179869184");
    EXPECT_EQ(model.serialNumber(), "HV-0001");
    EXPECT_EQ(model.deviceUUID(), "uuid");
    EXPECT_EQ(model.macAddress(), "A4:83:E7:01:0B:2C");
    EXPECT_EQ(model.diskUsagePercentage(), "27%");
    EXPECT_EQ(model.memoryUsagePercentage(), "50.00%");
    EXPECT_EQ(model.memoryUsageSize(), "1.00");
    EXPECT_EQ(model.diskUsageSize(), "232");
    EXPECT_EQ(model.memoryTotleSize(), "16GB");
    EXPECT_EQ(model.diskTotleSize(), "931");
}

TEST_F(DeviceInfoTest, an_unknown_model_has_a_name) {
    EXPECT_EQ(on.helper.getModelIdentifier(), "Unknown Mac");
    on.controls["hw.model"] = "ThinkPad T14";
    EXPECT_EQ(on.helper.getModelIdentifier(), "ThinkPad T14");
}

}  // namespace
}  // namespace halvane::device
