#include "ui/widgets/HDCLUICenter.h"

#include "ui/widgets/Accessibility.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>
#include <QToolTip>
#include <algorithm>

namespace halvane::ui {

namespace {

QPalette lightPalette() {
    using C = HDCLUICenter;
    QPalette palette(C::colorText1, C::colorCard, Qt::white, C::colorEdge, C::colorLine, C::colorText1, Qt::white, C::colorCard,
                     C::colorCard);
    palette.setColor(QPalette::AlternateBase, C::colorSub);
    palette.setColor(QPalette::Button, C::colorBg);
    palette.setColor(QPalette::ButtonText, C::colorText1);
    palette.setColor(QPalette::Highlight, C::colorSoftPressed);
    palette.setColor(QPalette::HighlightedText, C::colorText1);
    palette.setColor(QPalette::PlaceholderText, C::colorText3);
    palette.setColor(QPalette::Link, C::colorInk);
    palette.setColor(QPalette::LinkVisited, C::colorInk);
    palette.setColor(QPalette::ToolTipBase, C::colorCard);
    palette.setColor(QPalette::ToolTipText, C::colorText1);
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, C::colorDisabledText);
    return palette;
}

}  // namespace

QFont HDCLUICenter::font(Type type, QFont::Weight weight) {
    // The first that is installed wins, and Qt searches all others for a character that it lacks.
    static const QStringList families{QStringLiteral("Noto Sans CJK SC"), QStringLiteral("Noto Sans SC"),
                                      QStringLiteral("Source Han Sans SC"), QStringLiteral("WenQuanYi Micro Hei"),
                                      QStringLiteral("sans-serif")};
    QFont font;
    font.setFamilies(families);
    font.setPixelSize(static_cast<int>(type));
    font.setWeight(weight);
    return font;
}

QRect HDCLUICenter::contentColumn(QSize page) {
    constexpr int margin = 40;
    constexpr int widest = 920;
    const int width = std::min(widest, page.width() - 2 * margin);
    return {(page.width() - width) / 2, 0, width, page.height()};
}

bool HDCLUICenter::animates() { return QApplication::style()->styleHint(QStyle::SH_Widget_Animation_Duration) > 0; }

void HDCLUICenter::applyTo(QApplication& application) {
    // Fusion is built in; a desktop's own style would be a plug-in to load, and paint over what we draw.
    application.setStyle(QStringLiteral("Fusion"));
    application.setPalette(lightPalette());
    application.setFont(font(Type::Body));
    Accessibility::install();
    QToolTip::setPalette(lightPalette());
    QToolTip::setFont(font(Type::Caption));
}

}  // namespace halvane::ui
