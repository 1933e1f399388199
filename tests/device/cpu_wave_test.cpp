#include "device/CpuWave.h"

#include "device/ChartWindow.h"
#include "device/DateValueFormatter.h"
#include "device/SymbolsValueFormatter.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <limits>

namespace halvane::device {
namespace {

using Color = CpuWave::Color;

class CpuWaveTest : public testing::Test {
protected:
    void tick(float usage) {
        wave.add(usage);
        wave.advance();
    }
    /// One letter for each of the first `count` segments.
    [[nodiscard]] std::string colors(std::size_t count = 100) const {
        std::string letters;
        for (std::size_t i = 0; i < count; ++i) letters += "WRC"[static_cast<int>(wave.colors()[i])];
        return letters;
    }
    [[nodiscard]] std::vector<int> heights(std::size_t from, std::size_t count) const {
        std::vector<int> found;
        for (std::size_t i = from; i < from + count; ++i) found.push_back(wave.yVals()[i].y);
        return found;
    }

    CpuWave wave;
};

TEST_F(CpuWaveTest, before_the_first_sample_nothing_of_the_line_can_be_seen) {
    EXPECT_EQ(wave.cpuPercentageDataSources(), std::vector<float>(10, 0));
    EXPECT_EQ(heights(0, 100), std::vector<int>(100, 105)) << "above the axis";
    EXPECT_EQ(colors(), "WWWW" + std::string(96, 'R'));
    EXPECT_EQ(wave.runs(), (std::vector<CpuWave::Run>{{0, 4, Color::White}, {4, 99, Color::Red}}));
}

TEST_F(CpuWaveTest, list_begins_anew_when_it_holds_more_than_fifty) {
    for (int i = 1; i <= 41; ++i) tick(static_cast<float>(i));
    EXPECT_EQ(wave.cpuPercentageDataSources().size(), 51u);
    tick(42);
    ASSERT_EQ(wave.cpuPercentageDataSources().size(), 11u);
    EXPECT_EQ(wave.cpuPercentageDataSources()[9], 0);
    EXPECT_EQ(wave.cpuPercentageDataSources()[10], 42);
}

TEST_F(CpuWaveTest, gap_turns_red_before_the_next_one_is_cleared) {
    tick(1);
    EXPECT_EQ(colors(), std::string(10, 'R') + "CCCC" + std::string(86, 'R')) << "the white ones are red now";
    EXPECT_EQ(wave.index(), 10u);
    tick(2);
    EXPECT_EQ(colors(30), std::string(20, 'R') + "CCCC" + std::string(6, 'R'));
    for (int i = 3; i <= 9; ++i) tick(0);
    EXPECT_EQ(wave.index(), 90u);
    EXPECT_EQ(wave.runs(), (std::vector<CpuWave::Run>{{0, 90, Color::Red}, {90, 94, Color::Clear}, {94, 99, Color::Red}}));
    tick(0);
    EXPECT_EQ(wave.index(), 0u);
    EXPECT_EQ(colors(), "CCCC" + std::string(96, 'R'));
}

TEST_F(CpuWaveTest, sweep_writes_the_whole_list_over_ten_entries_and_pushes_the_rest_on) {
    tick(7.9F);
    EXPECT_EQ(heights(0, 12), (std::vector<int>{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 7, 105})) << "fractions are dropped";
    EXPECT_EQ(wave.allValues().size(), 101u);
    tick(8);
    EXPECT_EQ(heights(0, 10), std::vector<int>(10, 0));
    EXPECT_EQ(heights(10, 13), (std::vector<int>{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 7, 8, 105})) << "the seven of before was written over";
    EXPECT_EQ(wave.allValues().size(), 103u);
}

TEST_F(CpuWaveTest, line_is_the_same_as_the_plain_rule_makes_it_for_an_hour) {
    std::vector<int> plain(100, 105);
    std::vector<float> samples(10, 0);
    std::size_t index = 0;
    for (int second = 0; second < 3600; ++second) {
        const auto usage = static_cast<float>(second * 37 % 101);
        tick(usage);
        if (samples.size() > 50) samples.assign(10, 0);
        samples.push_back(usage);
        plain.erase(plain.begin() + static_cast<long>(index), plain.begin() + static_cast<long>(index) + 10);
        plain.insert(plain.begin() + static_cast<long>(index), samples.begin(), samples.end());
        index = index == 90 ? 0 : index + 10;
        ASSERT_EQ(heights(0, 100), std::vector<int>(plain.begin(), plain.begin() + 100)) << "second " << second;
    }
    EXPECT_EQ(wave.allValues().size(), plain.size());
    EXPECT_TRUE(std::equal(plain.begin(), plain.end(), wave.allValues().begin()));
}

TEST_F(CpuWaveTest, figures_that_no_processor_has_stay_within_a_byte) {
    const float odd[] = {-5, std::numeric_limits<float>::quiet_NaN(), 256, std::numeric_limits<float>::infinity(), 99.99F};
    for (const float usage : odd) tick(usage);
    EXPECT_EQ(heights(50, 5), (std::vector<int>{0, 0, 255, 255, 99}));
}

TEST(AxisTexts, are_cut_to_whole_numbers) {
    const SymbolsValueFormatter symbols;
    EXPECT_EQ(symbols.stringForValue(74.99), "74");
    EXPECT_EQ(symbols.stringForValue(-0.9), "0");
    const DateValueFormatter names({"a", "b"});
    EXPECT_EQ(names.stringForValue(1.99), "b");
    EXPECT_EQ(names.stringForValue(-0.5), "a");
    for (const double beyond : {2.0, -1.0, 1e300, std::numeric_limits<double>::quiet_NaN()}) EXPECT_EQ(names.stringForValue(beyond), "");
}

TEST(ChartWindow, keeps_the_place_that_is_zoomed_at_and_stays_within_the_ends) {
    ChartWindow window(100, 8);
    EXPECT_TRUE(window.showsAll());
    window.zoom(25, 0.5);
    EXPECT_EQ(window.left(), 12.5);
    EXPECT_EQ(window.right(), 62.5);
    EXPECT_EQ(window.move(-20), -12.5);
    EXPECT_EQ(window.move(200), 50);
    EXPECT_EQ(window.right(), 100);
    window.zoom(100, 0.001);
    EXPECT_EQ(window.left(), 92);
    EXPECT_TRUE(window.isNarrowest());
    for (int place = 0; place < 92; ++place) {
        window.showAll();
        window.move(place);
        window.zoom(place + 0.3, 0.01);
        EXPECT_TRUE(window.isNarrowest()) << place << ": whatever the sums round to";
    }
    window.zoom(92, 1000);
    EXPECT_TRUE(window.showsAll());
    EXPECT_EQ(window.move(5), 0) << "there is nowhere to go";
}

}  // namespace
}  // namespace halvane::device
