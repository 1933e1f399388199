#include "ui/widgets/BundleImage.h"
#include "ui/widgets/ContentSize.h"
#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/NamedImage.h"
#include "util/FileKind.h"

#include <gtest/gtest.h>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFontMetrics>
#include <QImage>
#include <QPainter>
#include <QPalette>
#include <algorithm>
#include <cmath>
#include <vector>

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

/// Every drawing of one of the program's folders, as `pixmapOf` gives it by its name.
void expectDrawings(const QString& folder, QPixmap (*pixmapOf)(const QString&, QSize, qreal)) {
    const QStringList files = QDir(ui::NamedImage::inside(folder, {})).entryList({QStringLiteral("*.svg")});
    ASSERT_FALSE(files.isEmpty());
    for (const QString& file : files) {
        const QString name = file.chopped(4);
        for (const qreal ratio : {1.0, 1.25, 1.5, 2.0}) {
            const QImage image = pixmapOf(name, {24, 24}, ratio).toImage();
            EXPECT_EQ(image.size(), QSize(24, 24) * ratio) << file.toStdString() << " at " << ratio;
            EXPECT_EQ(image.devicePixelRatio(), ratio) << file.toStdString();
            bool painted = false;
            for (int y = 0; y < image.height() && !painted; ++y)
                for (int x = 0; x < image.width() && !painted; ++x) painted = image.pixelColor(x, y).alpha() > 0;
            EXPECT_TRUE(painted) << file.toStdString() << " at " << ratio;
        }
    }
}

TEST(NamedImageTest, every_image_draws_something_at_every_ratio) { expectDrawings(QStringLiteral("images"), ui::NamedImage::pixmap); }

TEST(BundleImageTest, every_kind_of_file_has_a_picture_of_its_own) {
    expectDrawings(QStringLiteral("HVImageSource.bundle"), ui::BundleImage::getImageWithBundlePath);
    std::vector<QImage> seen;
    for (const char* path : {"a.dmg", "a.zip", "a.png", "a.mp4", "a.mp3", "a.xls", "a.ppt", "a.doc", "a"}) {
        const auto kind = QString::fromStdString(util::FileKind::getFileTypeImgNameWithFilePath(path));
        EXPECT_TRUE(QFile::exists(ui::BundleImage::getFileTypeImgPathWithImageName(kind))) << path;
        const QImage image = ui::BundleImage::getImageWithBundlePath(kind, {40, 40}, 1).toImage();
        EXPECT_EQ(ui::BundleImage::getImageWithBundleName(QStringLiteral("HVImageSource"), kind, {40, 40}, 1).toImage(), image) << path;
        EXPECT_FALSE(image.isNull() || std::ranges::find(seen, image) != seen.end()) << path;
        seen.push_back(image);
    }
    EXPECT_TRUE(ui::BundleImage::getImageWithBundleName(QStringLiteral("Other"), QStringLiteral("pkg"), {40, 40}, 1).isNull());
}

TEST(ContentSizeTest, a_text_has_the_room_that_its_lines_take) {
    const QFont font = C::font(C::Type::Body);
    const auto size = [&](const char* text) { return ui::ContentSize::getContentSizeWithFont(QString::fromUtf8(text), font); };
    const QSizeF one = size("登录");
    EXPECT_GT(one.width(), 0);
    EXPECT_GT(size("登录登录").width(), one.width());
    EXPECT_EQ(size("登录登录").height(), one.height());
    EXPECT_EQ(size("登录\n登录登录").width(), size("登录登录").width());
    EXPECT_GE(size("登录\n登录").height(), 2 * one.height());
    EXPECT_EQ(size(""), QSizeF(0, one.height()));
    EXPECT_GT(ui::ContentSize::getContentSizeWithFont(QStringLiteral("登录"), C::font(C::Type::Heading)).width(), one.width());
}

TEST(NamedImageTest, name_that_does_not_exist_gives_nothing) {
    EXPECT_TRUE(ui::NamedImage::pixmap(QStringLiteral("no_such_image"), {24, 24}, 1).isNull());
}

}  // namespace
}  // namespace halvane::test
