#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/NamedImage.h"

#include <gtest/gtest.h>
#include <QApplication>
#include <QDir>
#include <QFontMetrics>
#include <QImage>
#include <QPainter>
#include <QPalette>
#include <cmath>

namespace halvane::test {
namespace {

using C = ui::HDCLUICenter;

double luminance(const QColor& color) {
    const auto linear = [](double part) { return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor& one, const QColor& other) {
    const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

TEST(StyleTest, texts_and_shapes_can_be_told_from_their_grounds) {
    const struct {
        const char* name;
        QColor color;
        QColor ground;
        double atLeast;
    } rows[] = {
        {"text on a card", C::colorText1, C::colorCard, 4.5},
        {"text on the window", C::colorText1, C::colorBg, 4.5},
        {"selected text", C::colorText1, C::colorSoftPressed, 4.5},
        {"second text on the window", C::colorText2, C::colorBg, 4.5},
        {"placeholder", C::colorText3, C::colorCard, 4.5},
        {"tip", C::colorErr, C::colorCard, 4.5},
        {"link", C::colorInk, C::colorCard, 4.5},
        {"button", C::colorOnFill, C::colorThemeOrange, 4.5},
        {"button under the pointer", C::colorOnFill, C::colorThemeOrangeHover, 4.5},
        {"button pressed", C::colorOnFill, C::colorThemeOrangePressed, 4.5},
        {"border of a field", C::colorEdge, C::colorCard, 3},
        {"focus", C::colorInk, C::colorBg, 3},
    };
    for (const auto& [name, color, ground, atLeast] : rows) EXPECT_GE(contrast(color, ground), atLeast) << name;
}

TEST(StyleTest, interface_is_light_whatever_the_desktop_prefers) {
    const QPalette palette = QApplication::palette();
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        for (const auto ground : {QPalette::Window, QPalette::Base, QPalette::Button, QPalette::ToolTipBase, QPalette::AlternateBase})
            EXPECT_GT(luminance(palette.color(group, ground)), 0.8) << "group " << group << ", role " << ground;
        for (const auto text : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
            EXPECT_LT(luminance(palette.color(group, text)), 0.4) << "group " << group << ", role " << text;
    }
}

QImage drawn(const QString& text, QFont::Weight weight) {
    QImage image(40, 40, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setFont(C::font(C::Type::Heading, weight));
    painter.drawText(image.rect(), Qt::AlignCenter, text);
    return image;
}

TEST(StyleTest, chinese_characters_are_drawn_and_not_replaced_by_boxes) {
    for (const auto weight : {QFont::Normal, QFont::Bold}) {
        EXPECT_NE(drawn(QStringLiteral("登"), weight), drawn(QStringLiteral("录"), weight));
        EXPECT_NE(drawn(QStringLiteral("登"), weight), drawn(QStringLiteral("\uFFFF"), weight));
        EXPECT_NE(drawn(QStringLiteral("登"), weight), drawn(QString(), weight));
    }
}

TEST(NamedImageTest, every_image_draws_something_at_every_ratio) {
    EXPECT_FALSE(ui::NamedImage::pixmap(QStringLiteral("AppIcon"), {64, 64}, 1).isNull());
    const QStringList files = QDir(QStringLiteral(":/images")).entryList({QStringLiteral("*.svg")});
    ASSERT_FALSE(files.isEmpty());
    for (const QString& file : files) {
        const QString name = file.chopped(4);
        for (const qreal ratio : {1.0, 1.25, 1.5, 2.0}) {
            const QImage image = ui::NamedImage::pixmap(name, {24, 24}, ratio).toImage();
            EXPECT_EQ(image.size(), QSize(24, 24) * ratio) << file.toStdString() << " at " << ratio;
            EXPECT_EQ(image.devicePixelRatio(), ratio) << file.toStdString();
            bool painted = false;
            for (int y = 0; y < image.height() && !painted; ++y)
                for (int x = 0; x < image.width() && !painted; ++x) painted = image.pixelColor(x, y).alpha() > 0;
            EXPECT_TRUE(painted) << file.toStdString() << " at " << ratio;
        }
    }
}

TEST(NamedImageTest, name_that_does_not_exist_gives_nothing) {
    EXPECT_TRUE(ui::NamedImage::pixmap(QStringLiteral("no_such_image"), {24, 24}, 1).isNull());
}

}  // namespace
}  // namespace halvane::test
