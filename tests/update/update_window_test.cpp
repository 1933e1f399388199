#include "update/UpdateWindow.h"

#include "support/AccessibilityCheck.h"
#include "support/LayoutCheck.h"
#include "support/ViewTest.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/ProgressBar.h"
#include "ui/widgets/TextArea.h"
#include "update/UpdateTexts.h"
#include "util/UpdateError.h"

namespace halvane::update {
namespace {

class UpdateWindowTest : public test::ViewTest<UpdateWindow> {
protected:
    UpdateWindowTest() {
        QApplication::setDoubleClickInterval(0);
        window.onPrimary = [this] { events.emplace_back("primary"); };
        window.onSecondary = [this] { events.emplace_back("secondary"); };
        window.onClosed = [this] { events.emplace_back("closed"); };
        window.setScene(UpdateTexts::offer(item, "1.0.0"));
        window.present(UpdateScreen::Attention::Keyboard);
        show(window, window.size());
    }
    ~UpdateWindowTest() override { QApplication::setDoubleClickInterval(interval); }
    bool isShown(const char* name) { return control(name).isVisible(); }

    const int interval = QApplication::doubleClickInterval();
    const UpdateItem item{.version = "1.1.0", .notes = "第一行\n<b>第二行</b>", .length = 4'200'000};
    UpdateWindow window;
    std::vector<std::string> events;
};

TEST_F(UpdateWindowTest, shows_what_each_scene_says_and_has_room_for_it) {
    const std::vector<UpdateScene> scenes = {
        UpdateTexts::checking(),           UpdateTexts::upToDate("1.0.0"),
        UpdateTexts::offer(item, "1.0.0"), UpdateTexts::downloading(item, 0),
        UpdateTexts::downloading(item, 5), UpdateTexts::verifying(item),
        UpdateTexts::ready(item),          UpdateTexts::installing(item),
        UpdateTexts::installed(item),      UpdateTexts::failed(util::updateError(util::UpdateError::FeedExpired, ""))};
    for (const auto& scene : scenes) {
        SCOPED_TRACE(scene.heading);
        window.setScene(scene);
        EXPECT_EQ(text("headingLabel"), scene.heading);
        EXPECT_EQ(text("textLabel"), scene.text);
        EXPECT_EQ(isShown("notesView"), !scene.notes.empty());
        EXPECT_EQ(isShown("progressBar"), scene.isBusy);
        EXPECT_EQ(isShown("primaryBtn"), !scene.primary.empty());
        EXPECT_EQ(isShown("secondaryBtn"), !scene.secondary.empty());
        EXPECT_EQ(control<ui::ElidedLabel>("headingLabel").shownText().toStdString(), scene.heading);
        EXPECT_EQ(test::LayoutCheck::problemsOf(window), std::vector<std::string>());
        EXPECT_EQ(window.accessibleName().toStdString(), scene.heading);
        EXPECT_EQ(test::AccessibilityCheck(window).unnamed(), std::vector<std::string>());
    }
}

TEST_F(UpdateWindowTest, notes_are_plain_text_that_can_be_read_by_keyboard) {
    auto& notes = control<ui::TextArea>("notesView");
    EXPECT_EQ(notes.toPlainText(), QStringLiteral("第一行\n<b>第二行</b>"));
    notes.setFocus(Qt::TabFocusReason);
    press(Qt::Key_X);
    EXPECT_EQ(notes.toPlainText(), QStringLiteral("第一行\n<b>第二行</b>"));
    press(Qt::Key_Tab);
    EXPECT_NE(focused(), "notesView");
}

TEST_F(UpdateWindowTest, progress_goes_from_unknown_to_whole) {
    auto& bar = control<ui::ProgressBar>("progressBar");
    window.setScene(UpdateTexts::checking());
    EXPECT_EQ(bar.maximum(), 0) << "nobody knows";
    for (const auto& [received, percent] : {std::pair<std::uint64_t, int>{0, 0}, {2'100'000, 50}, {4'200'000, 100}, {9'000'000, 100}}) {
        window.setScene(UpdateTexts::downloading(item, received));
        EXPECT_EQ(bar.value(), percent);
    }
    const QImage whole = picture();
    window.setScene(UpdateTexts::downloading(item, 1'000'000));
    EXPECT_NE(picture(), whole);
}

TEST_F(UpdateWindowTest, buttons_keys_and_the_frame_reach_whoever_decides) {
    click("primaryBtn");
    click("secondaryBtn");
    press(Qt::Key_Escape);
    window.close();
    EXPECT_EQ(events, (std::vector<std::string>{"primary", "secondary", "closed", "closed"}));
    EXPECT_TRUE(window.isVisible()) << "the window itself decides nothing";
    window.dismiss();
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(events.size(), 4U);
}

TEST_F(UpdateWindowTest, a_press_for_the_last_scene_reaches_nothing_in_the_next) {
    QApplication::setDoubleClickInterval(60'000);
    const QRect primary = control("primaryBtn").geometry();
    window.setScene(UpdateTexts::installing(item));
    EXPECT_FALSE(control("secondaryBtn").geometry().intersects(primary)) << "no button stands where another did";
    click("secondaryBtn");
    window.setScene(UpdateTexts::installed(item));
    QTest::mouseDClick(&control("primaryBtn"), Qt::LeftButton);
    EXPECT_TRUE(events.empty());
    QApplication::setDoubleClickInterval(0);
    click("primaryBtn");
    EXPECT_EQ(events, std::vector<std::string>{"primary"});
}

TEST_F(UpdateWindowTest, an_offer_takes_no_keyboard_and_stays_above_windows_that_come_later) {
    window.dismiss();
    window.present(UpdateScreen::Attention::Quiet);
    EXPECT_TRUE(window.testAttribute(Qt::WA_ShowWithoutActivating));
    window.present(UpdateScreen::Attention::Keyboard);
    EXPECT_FALSE(window.testAttribute(Qt::WA_ShowWithoutActivating));
}

TEST_F(UpdateWindowTest, a_key_that_is_still_held_presses_nothing_in_the_next_scene) {
    control("primaryBtn").setFocus(Qt::TabFocusReason);
    press(Qt::Key_Return);
    window.setScene(UpdateTexts::ready(item));
    press(Qt::Key_Return);
    press(Qt::Key_Space);
    EXPECT_EQ(events, std::vector<std::string>{"primary"});
    for (const char* next : {"notesView", "secondaryBtn", "primaryBtn"}) {
        press(Qt::Key_Tab);
        EXPECT_EQ(focused(), next);
    }
    press(Qt::Key_Return);
    EXPECT_EQ(events.size(), 2U);
    window.setScene(UpdateTexts::downloading(item, 1));
    control("secondaryBtn").setFocus(Qt::TabFocusReason);
    window.setScene(UpdateTexts::downloading(item, 2));
    EXPECT_EQ(focused(), "secondaryBtn") << "progress takes the keyboard from nobody";
}

}  // namespace
}  // namespace halvane::update
