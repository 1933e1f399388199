#include "ui/widgets/AnimatedImageView.h"

#include "ui/widgets/NamedImage.h"

#include <gtest/gtest.h>
#include <QApplication>
#include <QImageReader>
#include <QProxyStyle>
#include <QTest>

namespace halvane::ui {
namespace {

/// A desktop on which things move, or do not.
class MotionStyle final : public QProxyStyle {
public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget, QStyleHintReturn* returned) const override {
        return hint == SH_Widget_Animation_Duration ? duration : QProxyStyle::styleHint(hint, option, widget, returned);
    }
    int duration = 200;
};

class AnimatedImageViewTest : public testing::Test {
protected:
    AnimatedImageViewTest() {
        style = new MotionStyle;
        QApplication::setStyle(style);
        view.resize(96, 96);
        view.show();
        first = picture();
    }
    ~AnimatedImageViewTest() override { QApplication::setStyle(QStringLiteral("Fusion")); }

    QImage picture() { return view.grab().toImage(); }
    /// Whether another frame is shown within some time.
    bool moves() {
        const QImage before = picture();
        return QTest::qWaitFor([&] { return picture() != before; }, 1000);
    }
    bool rests() {
        const QImage before = picture();
        return !QTest::qWaitFor([&] { return picture() != before; }, 250);
    }

    MotionStyle* style;
    AnimatedImageView view{QStringLiteral("Broom.gif"), nullptr};
    QImage first;
};

TEST(BroomTest, swings_for_ever_in_twelve_frames) {
    QImageReader broom(NamedImage::file(QStringLiteral("Broom.gif")));
    EXPECT_EQ(broom.size(), QSize(192, 192));
    EXPECT_EQ(broom.imageCount(), 12);
    EXPECT_EQ(broom.loopCount(), -1);
    QList<QImage> frames;
    for (int frame = 0; frame < 12; ++frame) {
        frames.push_back(broom.read());
        EXPECT_EQ(broom.nextImageDelay(), 80) << frame;
    }
    EXPECT_NE(frames[0], frames[3]);
    EXPECT_NE(frames[3], frames[9]) << "to both sides";
    EXPECT_EQ(frames[3].pixelColor(0, 0), QColor(Qt::white));
}

TEST_F(AnimatedImageViewTest, rests_until_it_is_started_and_returns_to_its_first_frame) {
    EXPECT_FALSE(view.isAnimating());
    EXPECT_TRUE(rests());
    view.startAnimating();
    EXPECT_TRUE(moves());
    view.startAnimating();
    EXPECT_TRUE(moves());
    view.stopAnimating();
    EXPECT_EQ(picture(), first);
    EXPECT_TRUE(rests());
    view.startAnimating();
    EXPECT_TRUE(moves());
}

TEST_F(AnimatedImageViewTest, runs_only_while_it_can_be_seen) {
    view.startAnimating();
    ASSERT_TRUE(moves());
    view.hide();
    EXPECT_TRUE(rests());
    EXPECT_TRUE(view.isAnimating());
    view.show();
    EXPECT_TRUE(moves());
    view.hide();
    view.stopAnimating();
    view.startAnimating();
    EXPECT_TRUE(rests());
}

TEST_F(AnimatedImageViewTest, stays_where_the_desktop_wants_nothing_to_move) {
    style->duration = 0;
    view.startAnimating();
    EXPECT_TRUE(view.isAnimating());
    EXPECT_TRUE(rests());
    EXPECT_EQ(picture(), first);
}

}  // namespace
}  // namespace halvane::ui
