#include "device/DeviceInfoView.h"

#include "device/HVDeviceUsageInfoManager.h"
#include "device/UsageChartView.h"
#include "device/UsageRingView.h"
#include "support/AccessibilityCheck.h"
#include "support/FakeDevice.h"
#include "support/LayoutCheck.h"
#include "support/ManualMainLoop.h"
#include "support/ViewTest.h"
#include "ui/widgets/HDCLUICenter.h"

#include <QAccessible>
#include <QClipboard>
#include <QLabel>
#include <QTextDocument>
#include <QWheelEvent>

using namespace std::chrono_literals;

namespace halvane::device {
namespace {

class DeviceInfoViewTest : public test::ViewTest<DeviceInfoView> {
protected:
    DeviceInfoViewTest() {
        on.launcher.outputs["/usr/sbin/scutil"] = "halvane-ws-0417\n";
        on.launcher.outputs["/usr/sbin/sysctl"] = "17179869184\n";
        on.disk = platform::FileSystemCounters{.blocks = 125'042'688, .freeBlocks = 94'109'696, .availableBlocks = 90'177'536};
        on.memoryPages =
            platform::MemoryCounters{.free = 1000, .active = 3'000'000, .inactive = 800'000, .wired = 360'000, .external = 2'000'000};
        make();
    }
    void make() { view = std::make_unique<DeviceInfoView>(DeviceInfoView::Collaborators{sampler, on.helper, facts, loop}); }
    /// Lets seconds pass in which the processor was busy for `usage` of a hundred ticks each.
    void second(std::uint64_t usage, int seconds = 1) {
        for (int i = 0; i < seconds; ++i) {
            auto& ticks = on.processorTicks->at(0);
            ticks = {.user = ticks.user + usage, .system = 0, .idle = ticks.idle + 100 - usage, .nice = 0};
            loop->advance(1s);
        }
    }
    UsageRingView& ring(const char* name) { return control<UsageRingView>(name); }
    UsageChartView& chart() { return control<UsageChartView>("lineChartView"); }
    std::string center(const char* name) { return ring(name).centerText().toStdString(); }
    static std::string spoken(QWidget& widget) {
        auto* self = QAccessible::queryAccessibleInterface(&widget);
        return self->text(QAccessible::Name).toStdString() + ": " + self->text(QAccessible::Description).toStdString();
    }
    /// The pieces of the line as "first-last".
    std::string pieces() {
        std::string all;
        for (const auto& piece : chart().drawnPieces())
            all += std::to_string(qRound(piece.first().x())) + "-" + std::to_string(qRound(piece.last().x())) + " ";
        return all;
    }
    std::string shownPart() {
        const auto& part = chart().shownPart();
        return std::to_string(qRound(part.left())) + "-" + std::to_string(qRound(part.right()));
    }
    void wheel(int turned) {
        const QPointF middle = chart().viewport()->rect().center();
        QWheelEvent event(middle, chart().viewport()->mapToGlobal(middle), {}, {0, turned}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                          false);
        QApplication::sendEvent(chart().viewport(), &event);
    }

    test::FakeDevice on;
    std::shared_ptr<test::ManualMainLoop> loop = std::make_shared<test::ManualMainLoop>();
    test::ManualMainLoop facts;
    HVDeviceUsageInfoManager sampler{{*loop, on, on.helper, on.log}};
    std::unique_ptr<DeviceInfoView> view;
};

TEST_F(DeviceInfoViewTest, summary_arrives_later_and_keeps_its_place) {
    show(*view);
    EXPECT_TRUE(on.launcher.starts.empty()) << "no program runs on the main thread";
    const QRect place = control("infoTextView").geometry();
    facts.runPending();
    EXPECT_EQ(text("infoTextView"), "");
    loop->runPending();
    EXPECT_EQ(control("infoTextView").accessibleName().toStdString(),
              "halvane-ws-0417\n\nDebian GNU/Linux  12\n处理器：17179869184\n内存：16GB\n硬盘：477GB\n序列号：HV-0001GB");
    EXPECT_EQ(control("infoTextView").geometry(), place);
    EXPECT_LE(control<QLabel>("infoTextView").heightForWidth(place.width()), place.height()) << "all of it can be seen";
}

TEST_F(DeviceInfoViewTest, summary_can_be_copied_by_keyboard) {
    show(*view);
    facts.runPending();
    loop->runPending();
    chart().setFocus(Qt::TabFocusReason);
    press(Qt::Key_Tab, Qt::ShiftModifier);
    EXPECT_EQ(focused(), "infoTextView");
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text().section(u'\n', -1).toStdString(), "序列号：HV-0001GB");
    press(Qt::Key_Tab);
    EXPECT_EQ(focused(), "lineChartView");
}

TEST_F(DeviceInfoViewTest, summary_may_arrive_when_the_page_is_gone) {
    view.reset();
    facts.runPending();
    loop->runPending();
    make();
    facts.runPending();
    view.reset();
    loop->runPending();
    loop->advance(2s);
}

TEST_F(DeviceInfoViewTest, names_are_text_and_not_markup) {
    on.launcher.outputs["/usr/sbin/scutil"] = "<img src=x>&lt;\n";
    make();
    show(*view);
    facts.runPending();
    loop->runPending();
    QTextDocument shown;
    shown.setHtml(control<QLabel>("infoTextView").text());
    EXPECT_EQ(shown.toPlainText().left(15).toStdString(), "<img src=x>&lt;");
}

TEST_F(DeviceInfoViewTest, before_the_first_second_the_figures_wait) {
    show(*view);
    EXPECT_EQ(text("cpuLabel"), "");
    EXPECT_EQ(center("diskView"), "xx.xxGB \nxx.xxGB");
    EXPECT_EQ(center("memoryView"), "xx.xxGB \nxx.xxGB");
    EXPECT_EQ(ring("diskView").usedPart() + ring("diskView").freePart(), 0);
    EXPECT_EQ(pieces(), "");
}

TEST_F(DeviceInfoViewTest, every_second_brings_the_figures_up_to_date) {
    show(*view);
    second(13);
    EXPECT_EQ(text("cpuLabel"), "cpu占用：13 %");
    EXPECT_EQ(center("diskView"), "118GB \n共477GB");
    EXPECT_EQ(center("memoryView"), "8.24GB \n共15.87GB");
    EXPECT_EQ(std::pair(ring("diskView").usedPart(), ring("diskView").freePart()), std::pair(118, 344));
    EXPECT_EQ(std::pair(ring("memoryView").usedPart(), ring("memoryView").freePart()), std::pair(8, 7)) << "whole parts";
    EXPECT_EQ(pieces(), "0-10 14-99 ");
    on.processorTicks->at(0) = {.user = 26, .system = 0, .idle = 974, .nice = 0};
    loop->advance(1s);
    EXPECT_EQ(text("cpuLabel"), "cpu占用：1 %") << "no decimals";
    second(3, 8);
    EXPECT_EQ(pieces(), "4-99 ") << "the sweep is back at the start";
}

TEST_F(DeviceInfoViewTest, each_figure_is_asked_for_anew_every_second) {
    second(5, 4);
    EXPECT_EQ(on.diskReadings, 3 * 4);
    EXPECT_EQ(on.memoryReadings, 3 * 4);
    EXPECT_TRUE(on.launcher.starts.empty()) << "and no program is started for it";
}

TEST_F(DeviceInfoViewTest, what_the_computer_does_not_tell_is_left_open) {
    show(*view);
    second(5);
    on.memoryPages.reset();
    on.disk.reset();
    second(5);
    for (const char* name : {"diskView", "memoryView"}) {
        EXPECT_EQ(center(name), "--GB \n共--GB");
        EXPECT_EQ(std::pair(ring(name).usedPart(), ring(name).freePart()), std::pair(0, 0));
    }
    auto& memory = ring("memoryView");
    const auto top = [&memory] { return memory.grab().toImage().pixelColor(memory.width() / 2 + 6, 26); };
    memory.setParts(1, 0);
    EXPECT_EQ(top(), ui::HDCLUICenter::colorRing);
    memory.setParts(0, 0);
    EXPECT_EQ(top(), ui::HDCLUICenter::colorLine) << "an empty ring";
    memory.setParts(3, 1);
    EXPECT_EQ(top(), ui::HDCLUICenter::colorRing);
    on.memoryPages = platform::MemoryCounters{.active = 100, .external = 600'000};
    second(5);
    EXPECT_EQ(center("memoryView"), "-2.29GB \n共0.00GB") << "more cache than memory in use";
    EXPECT_EQ(ring("memoryView").usedPart(), 0);
}

TEST_F(DeviceInfoViewTest, hidden_page_keeps_count_and_draws_nothing) {
    second(20, 3);
    EXPECT_EQ(view->wave().cpuPercentageDataSources().size(), 13u);
    EXPECT_EQ(view->findChild<QLabel*>(QStringLiteral("cpuLabel"))->text(), QString());
    show(*view);
    EXPECT_EQ(text("cpuLabel"), "cpu占用：20 %") << "as soon as it is seen";
    EXPECT_EQ(pieces(), "0-30 34-99 ");
    view->hide();
    second(90, 2);
    EXPECT_EQ(text("cpuLabel"), "cpu占用：20 %");
    EXPECT_EQ(pieces(), "0-30 34-99 ");
    view->show();
    EXPECT_EQ(text("cpuLabel"), "cpu占用：90 %");
    EXPECT_EQ(pieces(), "0-50 54-99 ");
}

TEST_F(DeviceInfoViewTest, newer_page_takes_over_and_begins_its_own_line) {
    show(*view);
    second(40, 2);
    auto older = std::move(view);
    make();
    show(*view);
    second(60);
    EXPECT_EQ(text("cpuLabel"), "cpu占用：60 %") << "the sampler went on";
    EXPECT_EQ(view->wave().cpuPercentageDataSources().size(), 11u);
    EXPECT_EQ(older->wave().cpuPercentageDataSources().size(), 12u) << "and the older one is told no more";
}

TEST_F(DeviceInfoViewTest, nothing_moves_or_lies_upon_another_at_any_size) {
    show(*view);
    facts.runPending();
    for (const QSize size : {QSize(746, 614), QSize(1066, 754), QSize(1706, 1034), QSize(3600, 2000)}) {
        view->resize(size);
        EXPECT_EQ(test::LayoutCheck::problemsOf(*view), std::vector<std::string>{}) << size.width();
        EXPECT_EQ(ring("diskView").width(), ring("memoryView").width());
        const QRect before = chart().geometry();
        const QRectF plot = chart().chart()->plotArea();
        second(100, 2);
        EXPECT_EQ(chart().geometry(), before);
        EXPECT_EQ(chart().chart()->plotArea(), plot);
        EXPECT_GE(chart().geometry().bottom(), plot.bottom()) << "the line has its room";
    }
}

TEST_F(DeviceInfoViewTest, screen_reader_hears_the_figures_of_the_moment) {
    show(*view);
    EXPECT_EQ(spoken(chart()), "cpu占用曲线: ");
    second(10);
    second(30);
    EXPECT_EQ(spoken(chart()), "cpu占用曲线: 当前 30 %，最近 2 秒最低 10 %，最高 30 %");
    EXPECT_EQ(spoken(ring("diskView")), "硬盘: 已用 118GB 共477GB");
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&chart())->role(), QAccessible::Chart);
    EXPECT_EQ(test::AccessibilityCheck(*view).unnamed(), std::vector<std::string>{});
    second(0, 40);
    EXPECT_EQ(spoken(chart()), "cpu占用曲线: 当前 0 %，最近 1 秒最低 0 %，最高 0 %") << "of the samples that are there";
}

TEST_F(DeviceInfoViewTest, line_can_be_zoomed_and_dragged_along_but_not_up) {
    show(*view);
    second(50);
    auto* plot = chart().viewport();
    const QPoint middle = plot->rect().center();
    EXPECT_EQ(shownPart(), "0-99");
    QTest::mouseDClick(plot, Qt::LeftButton, {}, middle);
    QTest::mouseDClick(plot, Qt::LeftButton, {}, middle);
    const double left = chart().shownPart().left();
    EXPECT_NEAR(chart().shownPart().right() - left, 99 / 1.96, 0.01);
    QTest::mousePress(plot, Qt::LeftButton, {}, middle);
    QTest::mouseMove(plot, middle + QPoint(-60, 40));
    QTest::mouseRelease(plot, Qt::LeftButton, {}, middle + QPoint(-60, 40), 200);
    EXPECT_GT(chart().shownPart().left(), left) << "dragged to the left, later samples come in";
    wheel(120);
    EXPECT_NEAR(chart().shownPart().right() - chart().shownPart().left(), 99 / 1.96 / 1.4, 0.01);
    wheel(-1200);
    EXPECT_EQ(shownPart(), "0-99");
    for (int i = 0; i < 8; ++i) QTest::mouseDClick(plot, Qt::LeftButton, {}, middle);
    EXPECT_TRUE(chart().shownPart().isNarrowest());
    QTest::mouseDClick(plot, Qt::LeftButton, {}, middle);
    EXPECT_EQ(shownPart(), "0-99") << "from the narrowest back to all";
    second(50);
    EXPECT_EQ(text("cpuLabel"), "cpu占用：50 %");
}

TEST_F(DeviceInfoViewTest, dragged_line_glides_on_and_comes_to_rest) {
    show(*view);
    auto* plot = chart().viewport();
    const QPoint middle = plot->rect().center();
    for (int i = 0; i < 4; ++i) QTest::mouseDClick(plot, Qt::LeftButton, {}, middle);
    QTest::mousePress(plot, Qt::LeftButton, {}, middle);
    for (int moved = 10; moved <= 60; moved += 10) QTest::mouseMove(plot, middle + QPoint(-moved, 0), 20);
    const double held = chart().shownPart().left();
    QTest::mouseRelease(plot, Qt::LeftButton, {}, middle + QPoint(-60, 0));
    EXPECT_TRUE(QTest::qWaitFor([&] { return chart().shownPart().left() > held; }, 5000));
    double before = -1;
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            QTest::qWait(60);
            return std::exchange(before, chart().shownPart().left()) == chart().shownPart().left();
        },
        5000));
    EXPECT_LT(chart().shownPart().right(), 98) << "long before the end of the line";
}

TEST_F(DeviceInfoViewTest, line_can_be_walked_along_by_keyboard) {
    show(*view);
    chart().setFocus(Qt::TabFocusReason);
    press(Qt::Key_Plus);
    press(Qt::Key_Plus);
    EXPECT_EQ(shownPart(), "24-75");
    press(Qt::Key_Right);
    EXPECT_EQ(shownPart(), "29-80");
    press(Qt::Key_Left);
    press(Qt::Key_Minus);
    EXPECT_EQ(shownPart(), "14-85");
    press(Qt::Key_Escape);
    EXPECT_EQ(shownPart(), "0-99");
}

}  // namespace
}  // namespace halvane::device
