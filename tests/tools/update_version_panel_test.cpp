#include "tools/UpdateVersionPanel.h"

#include "support/RecordingLog.h"
#include "support/RecordingUpdater.h"
#include "support/ViewTest.h"
#include "ui/widgets/FilledButton.h"

#include <memory>

namespace halvane::test {
namespace {

using Events = std::vector<std::string>;
using Ground = ui::FilledButton::Ground;

class UpdateVersionPanelTest : public ViewTest<tools::UpdateVersionPanel> {
protected:
    UpdateVersionPanelTest() {
        updater.situation = [this] {
            if (!panel) return updater.hasDelegate() ? " of the delegate" : " of nobody";
            return panel->isVisible() ? " with the panel" : "";
        };
        panel = std::make_unique<tools::UpdateVersionPanel>(updater, log, "1.0.0");
        show(*panel, {400, 300});
    }

    ui::FilledButton& button() { return control<ui::FilledButton>("updateBtn"); }

    Events events;
    RecordingLog log;
    RecordingUpdater updater{events};
    std::unique_ptr<tools::UpdateVersionPanel> panel;
};

TEST_F(UpdateVersionPanelTest, asks_once_when_it_is_made_and_can_be_told) {
    EXPECT_EQ(events, Events{"update information of the delegate"});
    EXPECT_EQ(text("versionLabel"), "当前版本：V 1.0.0");
    EXPECT_EQ(button().text(), QStringLiteral("已经是最新版本"));
    EXPECT_FALSE(text("detailLabel").empty());
    panel->close();
    panel->show();
    EXPECT_EQ(events.size(), 1u);
    EXPECT_TRUE(log.lines().empty()) << "no answer, no word: a failed check leaves everything";
}

TEST_F(UpdateVersionPanelTest, tells_button_and_log_apart) {
    updater.find("2.1");
    EXPECT_EQ(button().text(), QStringLiteral("发现新版本V2.1"));
    EXPECT_EQ(button().ground(), Ground::ThemeOrange);
    const int width = button().width();
    updater.find("2026.10.1-rc2");
    EXPECT_GT(button().width(), width) << "a long version has room";
    updater.findNothing();
    EXPECT_EQ(button().text(), QStringLiteral("已经是最新版本"));
    EXPECT_EQ(button().ground(), Ground::Slate);
    EXPECT_EQ(log.lines(), (Events{"发现新版本2.1", "发现新版本2026.10.1-rc2", "已经是最新版本"}));
}

TEST_F(UpdateVersionPanelTest, closes_before_the_updater_shows_itself) {
    events.clear();
    QTest::mouseClick(&button(), Qt::LeftButton);
    EXPECT_EQ(events, Events{"interactive update check"});
    EXPECT_FALSE(panel->isVisible());
}

TEST_F(UpdateVersionPanelTest, escape_closes_it_and_an_answer_may_come_when_it_is_closed_or_gone) {
    press(Qt::Key_Return);
    EXPECT_EQ(events.size(), 1u) << "the key that opened it sets off nothing";
    QTest::keyClick(panel.get(), Qt::Key_Escape);
    EXPECT_FALSE(panel->isVisible());
    panel->show();
    QTest::keyClick(panel.get(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(panel->isVisible());
    updater.find("3");
    panel->show();
    EXPECT_EQ(button().text(), QStringLiteral("发现新版本V3"));
    panel.reset();
    updater.find("4");
    updater.findNothing();
    EXPECT_EQ(log.lines(), Events{"发现新版本3"});
}

TEST_F(UpdateVersionPanelTest, version_stands_higher_without_the_button) {
    const auto bottom = [this] { return panel->height() - (control("versionLabel").geometry().bottom() + 1); };
    EXPECT_EQ(bottom(), 70);
    panel->updateBtnIsHidden(true);
    EXPECT_FALSE(button().isVisible());
    EXPECT_EQ(bottom(), 120);
    panel->updateBtnIsHidden(false);
    EXPECT_TRUE(button().isVisible());
    EXPECT_EQ(bottom(), 70);
}

TEST_F(UpdateVersionPanelTest, frame_has_no_buttons) {
    EXPECT_FALSE(panel->windowFlags() & (Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint));
    EXPECT_TRUE(panel->styleMask().testFlag(ui::HDCLBaseWindow::Closable));
}

}  // namespace
}  // namespace halvane::test
