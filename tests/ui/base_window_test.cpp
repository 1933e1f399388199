#include "ui/widgets/HDCLBaseWindow.h"

#include "ui/widgets/ContentView.h"

#include <gtest/gtest.h>
#include <QPointer>
#include <QTest>
#include <memory>
#include <string>
#include <vector>

namespace halvane::test {
namespace {

using ui::HDCLBaseWindow;

/// Answers as it was told and keeps what it was asked.
class ScriptedDelegate final : public ui::WindowDelegate {
public:
    bool closes = true;
    bool zooms = true;
    std::vector<std::string> asked;

    bool windowShouldClose(HDCLBaseWindow&) override {
        asked.push_back("close");
        return closes;
    }
    bool windowShouldZoom(HDCLBaseWindow&, QSize proposed) override {
        asked.push_back("zoom " + std::to_string(proposed.width()) + "x" + std::to_string(proposed.height()));
        return zooms;
    }
};

class BaseWindowTest : public testing::Test {
protected:
    BaseWindowTest() {
        window.setDelegate(&delegate);
        window.setContentSize({400, 300});
        window.makeKeyAndOrderFront();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    std::string screenSize() const {
        const QSize size = window.screen()->availableGeometry().size();
        return std::to_string(size.width()) + "x" + std::to_string(size.height());
    }

    ScriptedDelegate delegate;
    HDCLBaseWindow window;
};

TEST_F(BaseWindowTest, closes_only_when_its_delegate_agrees) {
    delegate.closes = false;
    EXPECT_FALSE(window.close());
    EXPECT_TRUE(window.isVisible());
    delegate.closes = true;
    EXPECT_TRUE(window.close());
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(delegate.asked, (std::vector<std::string>{"close", "close"}));
}

TEST_F(BaseWindowTest, closes_without_a_delegate) {
    window.setDelegate(nullptr);
    EXPECT_TRUE(window.close());
}

TEST_F(BaseWindowTest, refused_zoom_is_undone_and_asked_about_once) {
    delegate.zooms = false;
    window.showMaximized();
    EXPECT_TRUE(QTest::qWaitFor([this] { return !window.isMaximized(); }, 5000));
    EXPECT_TRUE(QTest::qWaitFor([this] { return window.size() == QSize(400, 300); }, 5000));
    EXPECT_EQ(delegate.asked, std::vector<std::string>{"zoom " + screenSize()});
}

TEST_F(BaseWindowTest, allowed_zoom_stays_and_so_does_the_way_back) {
    window.showMaximized();
    QCoreApplication::processEvents();
    EXPECT_TRUE(window.isMaximized());
    window.showNormal();
    QCoreApplication::processEvents();
    EXPECT_FALSE(window.isMaximized());
    EXPECT_EQ(delegate.asked.size(), 1u);
}

TEST_F(BaseWindowTest, window_of_fixed_size_neither_zooms_nor_asks) {
    window.setStyleMask(HDCLBaseWindow::StyleMask(HDCLBaseWindow::Titled | HDCLBaseWindow::Closable));
    window.makeKeyAndOrderFront();
    window.showMaximized();
    EXPECT_TRUE(QTest::qWaitFor([this] { return !window.isMaximized(); }, 5000));
    EXPECT_EQ(window.size(), QSize(400, 300));
    EXPECT_TRUE(delegate.asked.empty());
}

TEST_F(BaseWindowTest, zoom_policy_wants_room_for_the_main_content) {
    class PolicyOnly final : public ui::WindowDelegate {
        bool windowShouldClose(HDCLBaseWindow&) override { return true; }
    } policy;
    const struct {
        QSize proposed;
        bool allowed;
    } rows[] = {{{959, 800}, false}, {{960, 640}, true}, {{960, 639}, false}, {{1920, 1080}, true}, {{0, 0}, false}};
    for (const auto& [proposed, allowed] : rows)
        EXPECT_EQ(policy.windowShouldZoom(window, proposed), allowed) << proposed.width() << "x" << proposed.height();
}

TEST_F(BaseWindowTest, frame_has_the_buttons_of_the_style_mask_less_the_hidden_ones) {
    using B = HDCLBaseWindow;
    constexpr auto buttons = Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint;
    EXPECT_EQ(window.windowFlags() & buttons, buttons);
    window.setStyleMask(B::StyleMask(B::Titled | B::Closable | B::Miniaturizable));
    EXPECT_EQ(window.windowFlags() & buttons, Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint);
    window.setStandardButtonHidden(B::StandardButton::Miniaturize);
    EXPECT_EQ(window.windowFlags() & buttons, Qt::WindowCloseButtonHint);
    // A hidden button stays hidden whatever mask comes after it.
    window.setStyleMask(window.styleMask() | B::Resizable);
    EXPECT_EQ(window.windowFlags() & buttons, Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint);
}

TEST_F(BaseWindowTest, ordering_out_and_in_keeps_size_and_content) {
    QWidget content;
    window.setContentView(&content);
    window.resize(500, 350);
    window.orderOut();
    EXPECT_FALSE(window.isVisible());
    window.orderFront();
    EXPECT_TRUE(window.isVisible());
    EXPECT_TRUE(content.isVisible());
    EXPECT_EQ(content.size(), QSize(500, 350));
    window.showMinimized();
    window.orderFront();
    EXPECT_FALSE(window.isMinimized());
}

TEST_F(BaseWindowTest, centre_keeps_the_title_bar_of_an_oversized_window_on_the_screen) {
    const QRect usable = window.screen()->availableGeometry();
    window.center();
    EXPECT_LE((window.frameGeometry().center() - usable.center()).manhattanLength(), 2);
    window.setContentSize(usable.size() + QSize(200, 200));
    window.center();
    EXPECT_EQ(window.pos(), usable.topLeft());
}

TEST(ContentViewTest, learns_of_each_window_it_enters_and_outlives_it) {
    class Counting final : public ui::ContentView {
    public:
        int moves = 0;

    protected:
        void viewDidMoveToWindow() override { ++moves; }
    } view;
    auto first = std::make_unique<HDCLBaseWindow>();
    first->setContentView(&view);
    EXPECT_EQ(view.moves, 1) << "before the window is on the screen";
    first->orderFront();
    first->orderOut();
    first->orderFront();
    EXPECT_EQ(view.moves, 1);
    first.reset();
    EXPECT_EQ(view.parent(), nullptr);
    EXPECT_EQ(view.moves, 1);

    QWidget other;
    HDCLBaseWindow second;
    second.setContentView(&view);
    second.setContentView(&other);
    EXPECT_EQ(view.moves, 2);
    EXPECT_EQ(view.parent(), nullptr);
    EXPECT_EQ(second.contentView(), &other);
}

TEST(ContentViewTest, view_that_goes_first_leaves_an_empty_window) {
    HDCLBaseWindow window;
    {
        ui::ContentView view;
        window.setContentView(&view);
    }
    EXPECT_EQ(window.contentView(), nullptr);
    window.setContentSize({300, 200});
}

}  // namespace
}  // namespace halvane::test
