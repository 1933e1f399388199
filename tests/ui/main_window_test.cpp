#include "ui/main/MainWindow.h"

#include "ui/main/MainView.h"
#include "ui/widgets/ElidedLabel.h"

#include <gtest/gtest.h>
#include <QTest>

namespace halvane::test {
namespace {

std::unique_ptr<ui::MainWindow> mainWindow(const ui::UserSummary& user, int* made = nullptr) {
    return std::make_unique<ui::MainWindow>([user, made] {
        if (made) ++*made;
        return std::make_unique<ui::MainView>(user);
    });
}

TEST(MainWindowTest, keeps_its_content_size_as_the_smallest) {
    int made = 0;
    const auto window = mainWindow({}, &made);
    EXPECT_EQ(window->size(), QSize(960, 640));
    window->orderFront();
    window->resize(200, 100);
    EXPECT_EQ(window->size(), QSize(960, 640));
    window->resize(1300, 900);
    EXPECT_EQ(window->mainView().size(), QSize(1300, 900));
    EXPECT_EQ(window->contentView(), &window->mainView());
    EXPECT_EQ(made, 1);
}

TEST(MainWindowTest, shows_what_is_known_of_the_user_and_no_empty_rows) {
    const struct {
        const char* name;
        ui::UserSummary user;
        QStringList shown;
    } rows[] = {
        {"everything", {"陈晓", "信息技术部", "chen.xiao@example.com", "松岭"}, {"nickName", "departmentName", "email", "workAddress"}},
        {"nothing", {}, {}},
        {"empty texts", {"陈晓", "", "", std::nullopt}, {"nickName"}},
    };
    for (const auto& [name, user, shown] : rows) {
        const auto window = mainWindow(user);
        QStringList found;
        for (const auto* label : window->findChildren<QLabel*>())
            if (!label->objectName().isEmpty() && !label->text().isEmpty()) found << label->objectName();
        EXPECT_EQ(found, shown) << name;
    }
}

TEST(MainWindowTest, long_names_stay_inside_the_card) {
    const auto window = mainWindow({std::string(300, 'x'), std::nullopt, std::string(300, 'y') + "@example.com", std::nullopt});
    window->orderFront();
    for (const char* name : {"nickName", "email"}) {
        const auto* label = window->findChild<QLabel*>(QLatin1String(name));
        ASSERT_NE(label, nullptr) << name;
        EXPECT_TRUE(label->parentWidget()->rect().contains(label->geometry())) << name;
        EXPECT_EQ(label->toolTip(), label->text()) << name;
    }
}

}  // namespace
}  // namespace halvane::test
