#include "ui/main/MainWindow.h"

#include "support/MainStory.h"

#include <gtest/gtest.h>
#include <QTest>

namespace halvane::test {
namespace {

TEST(MainWindowTest, keeps_its_content_size_as_the_smallest) {
    MainStory story;
    const auto window = story.makeMainWindow();
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Halvane"));
    EXPECT_EQ(window->size(), QSize(960, 640));
    window->orderFront();
    window->resize(200, 100);
    EXPECT_EQ(window->size(), QSize(960, 640));
    window->resize(1300, 900);
    EXPECT_EQ(window->mainView().size(), QSize(1300, 900));
    EXPECT_EQ(window->contentView(), &window->mainView());
    EXPECT_EQ(story.company.transport.exchanges.size(), 1u) << "the content is made once";
}

}  // namespace
}  // namespace halvane::test
