#include "device/HVDeviceUsageInfoManager.h"

#include "support/FakeDevice.h"
#include "support/ManualMainLoop.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace halvane::device {
namespace {

using Processors = std::vector<platform::ProcessorCounters>;

class UsageSamplerTest : public testing::Test {
protected:
    UsageSamplerTest() {
        sampler.setCpuUsagePercentage([this](float usage) { told.push_back(usage); });
    }
    void computer(Processors ticks) {
        on.processorNumber = static_cast<std::uint32_t>(ticks.size());
        on.processorTicks = std::move(ticks);
    }
    std::string sampled() {
        sampler.cupUsageInfo();
        return sampler.model().cpuUsagePercentage().value_or("nothing");
    }

    test::FakeDevice on;
    test::ManualMainLoop loop;
    test::RecordingLog log;
    HVDeviceUsageInfoManager sampler{{loop, on, on.helper, log}};
    std::vector<float> told;
};

TEST_F(UsageSamplerTest, figure_is_the_mean_of_the_processors_own_ratios) {
    struct Row {
        const char* name;
        Processors before, now;
        const char* figure;
    };
    constexpr std::uint64_t kWrap = std::uint64_t{1} << 32;
    const Row rows[] = {
        {"30 of 100 and 10 of 100", {{}, {}}, {{30, 0, 70, 0}, {10, 0, 90, 0}}, "20.00"},
        {"unequal times: not the ratio of the sums", {{}, {}}, {{90, 0, 10, 0}, {0, 0, 900, 0}}, "45.00"},
        {"user, system and nice are use", {{1, 1, 1, 1}}, {{2, 3, 5, 4}}, "60.00"},
        {"a processor that stood still", {{5, 5, 5, 5}, {}}, {{5, 5, 5, 5}, {100, 0, 0, 0}}, "50.00"},
        {"all stood still", {{5, 5, 5, 5}}, {{5, 5, 5, 5}}, "0.00"},
        {"waiting time was taken back", {{0, 0, 100, 0}}, {{10, 0, 90, 0}}, "100.00"},
        {"all went back", {{9, 9, 9, 9}}, {{1, 1, 1, 1}}, "0.00"},
        {"busy throughout", {{7, 0, 50, 0}}, {{107, 0, 50, 0}}, "100.00"},
        {"counters pass what 31 bits hold", {{kWrap / 2 - 10, 0, 0, 0}}, {{kWrap / 2 + 20, 0, 70, 0}}, "30.00"},
        {"counters pass what 32 bits hold", {{0, 0, kWrap - 10, 0}}, {{10, 0, kWrap + 20, 0}}, "25.00"},
        {"a third", {{}, {}, {}}, {{1, 0, 2, 0}, {1, 0, 2, 0}, {1, 0, 2, 0}}, "33.33"},
    };
    for (const Row& row : rows) {
        HVDeviceUsageInfoManager fresh({loop, on, on.helper, log});
        computer(row.before);
        fresh.startCollectInfo();
        fresh.cupUsageInfo();
        on.processorTicks = row.now;
        fresh.cupUsageInfo();
        EXPECT_EQ(fresh.model().cpuUsagePercentage(), row.figure) << row.name;
    }
}

TEST_F(UsageSamplerTest, first_figure_tells_of_the_time_since_the_system_started) {
    computer({{300, 50, 600, 50}});
    sampler.startCollectInfo();
    EXPECT_EQ(sampled(), "40.00");
    EXPECT_EQ(sampled(), "0.00") << "nothing happened since";
    HVDeviceUsageInfoManager later({loop, on, on.helper, log});
    computer({{.user = 1'000'000'000, .system = 0, .idle = 3'000'000'000, .nice = 0}});
    later.startCollectInfo();
    later.cupUsageInfo();
    EXPECT_EQ(later.model().cpuUsagePercentage(), "25.00") << "up for a year";
}

TEST_F(UsageSamplerTest, turns_come_a_second_apart_and_starting_twice_adds_none) {
    computer({{50, 0, 50, 0}});
    sampler.startCollectInfo();
    loop.advance(500ms);
    sampler.startCollectInfo();
    loop.advance(499ms);
    EXPECT_TRUE(told.empty()) << "not at once";
    loop.advance(1ms);
    EXPECT_EQ(told, std::vector<float>{50});
    loop.advance(3s);
    EXPECT_EQ(told.size(), 4u);
    sampler.stopCollectInfo();
    loop.advance(10s);
    EXPECT_EQ(told.size(), 4u);
    on.processorTicks = Processors{{80, 0, 120, 0}};
    sampler.startCollectInfo();
    loop.advance(1s);
    EXPECT_EQ(told.back(), 30) << "a later start goes on from the counters it had";
}

TEST_F(UsageSamplerTest, unreadable_counters_are_logged_and_repeat_the_last_figure) {
    on.processorTicks.reset();
    sampler.startCollectInfo();
    loop.advance(1s);
    EXPECT_EQ(told, std::vector<float>{0}) << "there was none yet";
    on.processorTicks = Processors{{25, 0, 75, 0}};
    loop.advance(1s);
    on.processorTicks.reset();
    loop.advance(2s);
    EXPECT_EQ(told, (std::vector<float>{0, 25, 25, 25}));
    EXPECT_EQ(log.lines(), (std::vector<std::string>(3, "Error!")));
    on.processorTicks = Processors{{75, 0, 125, 0}};
    loop.advance(1s);
    EXPECT_EQ(told.back(), 50) << "since the last sample that was one";
}

TEST_F(UsageSamplerTest, processors_that_come_and_go_are_compared_with_nobody_elses_counters) {
    computer({{10, 0, 90, 0}, {10, 0, 90, 0}});
    sampler.startCollectInfo();
    sampled();
    on.processorTicks = Processors{{60, 0, 140, 0}};
    EXPECT_EQ(sampled(), "15.00") << "one of two is gone: 30 % of its whole time, shared by two";
    on.processorTicks = Processors{{60, 0, 140, 0}, {50, 0, 50, 0}, {90, 0, 10, 0}};
    EXPECT_EQ(sampled(), "40.00") << "the third was not there at the start";
}

TEST_F(UsageSamplerTest, without_a_count_of_processors_the_first_one_stands_for_all) {
    computer({{20, 0, 80, 0}, {100, 0, 0, 0}});
    on.processorNumber.reset();
    sampler.startCollectInfo();
    EXPECT_EQ(sampled(), "20.00");
}

TEST_F(UsageSamplerTest, callback_gets_the_models_figure_without_its_sign_and_may_replace_itself) {
    sampler.setCpuUsagePercentage([this](float usage) {
        told.push_back(usage);
        sampler.setCpuUsagePercentage([this](float later) { told.push_back(-later); });
    });
    on.processorTicks.reset();
    sampler.getDeviceInfoModel().setCpuUsagePercentage("%12.5%");
    sampler.updateInfo();
    sampler.updateInfo();
    EXPECT_EQ(told, (std::vector<float>{12.5F, -12.5F}));
    sampler.setCpuUsagePercentage(nullptr);
    sampler.updateInfo();
    EXPECT_EQ(told.size(), 2u);
}

}  // namespace
}  // namespace halvane::device
