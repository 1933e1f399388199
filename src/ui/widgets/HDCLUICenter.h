#pragma once

#include <QColor>
#include <QFont>
#include <QRect>
#include <QSize>

class QApplication;

namespace halvane::ui {

/// The one place of colours, type and measures. Light only: the interface looks the same on a dark
/// desktop. Lengths are logical pixels. Texts on `colorCard` and on filled grounds keep a contrast of
/// at least 4.5:1, shapes 3:1.
class HDCLUICenter {
public:
    static constexpr QColor colorBg{0xF4, 0xF5, 0xF7};
    static constexpr QColor colorCard{0xFF, 0xFF, 0xFF};
    static constexpr QColor colorSub{0xF7, 0xF8, 0xFA};   ///< inner cards, hovered rows
    static constexpr QColor colorLine{0xE3, 0xE6, 0xEA};  ///< hairlines
    static constexpr QColor colorEdge{0x84, 0x8C, 0x97};  ///< fields, check boxes
    static constexpr QColor colorText1{0x1B, 0x1F, 0x24};
    static constexpr QColor colorText2{0x56, 0x5D, 0x68};
    static constexpr QColor colorText3{0x6B, 0x72, 0x7D};  ///< placeholders, on `colorCard` only
    static constexpr QColor colorThemeOrange{0xC8, 0x4B, 0x0A};
    static constexpr QColor colorThemeOrangeHover{0xB5, 0x43, 0x0A};
    static constexpr QColor colorThemeOrangePressed{0x98, 0x37, 0x0A};
    static constexpr QColor colorOnFill{0xFF, 0xFF, 0xFF};  ///< text on a filled ground
    static constexpr QColor colorInk{0xB8, 0x43, 0x08};     ///< orange text, links, focus
    static constexpr QColor colorSoft{0xFF, 0xF1, 0xE6};
    static constexpr QColor colorSoftPressed{0xFE, 0xE7, 0xD5};  ///< also text selection
    static constexpr QColor colorOutline{0xED, 0xB4, 0x8E};      ///< border of orange buttons, of the grid's lit item
    static constexpr QColor colorHover{0xEB, 0xED, 0xF0};
    static constexpr QColor colorPressed{0xDF, 0xE2, 0xE7};
    static constexpr QColor colorErr{0xC9, 0x28, 0x1E};
    static constexpr QColor colorOk{0x1B, 0x7F, 0x4D};
    static constexpr QColor colorSlate{0x5F, 0x67, 0x72};
    static constexpr QColor colorSlateHover{0x51, 0x58, 0x62};
    static constexpr QColor colorSlatePressed{0x42, 0x48, 0x52};
    static constexpr QColor colorBusy{0x8A, 0x91, 0x9B};
    static constexpr QColor colorDisabledGround{0xEC, 0xEE, 0xF1};
    static constexpr QColor colorDisabledText{0x8A, 0x91, 0x9B};

    static constexpr QColor colorRing{0xDC, 0x5A, 0x0C};     ///< the used part; the free one is `colorLine`
    static constexpr QColor colorCpuLine{0xD5, 0x29, 0x1B};  ///< over a grid in `colorLine`
    static constexpr QColor colorAxisText{0x64, 0x6B, 0x76};

    static constexpr QColor colorArcs{0xF6, 0xF7, 0xF9};         ///< the arcs behind pages that let them through
    static constexpr QColor colorScrim{0x14, 0x18, 0x1E, 0x85};  ///< over what cannot be used now
    static constexpr QColor colorShadow{0, 0, 0, 0x33};

    static constexpr QSize loginContentSize{330, 400};
    static constexpr QSize mainContentSize{960, 640};
    static constexpr int radiusCard = 12;
    static constexpr int radiusRow = 10;  ///< rows of the left menu
    static constexpr int radiusControl = 8;
    static constexpr int heightControl = 44;  ///< buttons, fields, menu rows
    /// Every button keeps this much free around what it draws, for the ring of the keyboard focus.
    static constexpr int ringMargin = 4;
    static constexpr int ringWidth = 2;
    static constexpr int ringRadius = 12;
    static constexpr qreal disabledOpacity = 0.45;  ///< of images

    /// Sizes of type in pixels.
    enum class Type { Heading = 24, Title = 20, Figure = 18, RowTitle = 17, Item = 16, Body = 15, Caption = 13, Axis = 12, Dots = 10 };
    [[nodiscard]] static QFont font(Type type, QFont::Weight weight = QFont::Normal);

    /// Where a page's content stands from left to right: 40 from both edges, at most 920 wide, then centred.
    /// `height` as the page's.
    [[nodiscard]] static QRect contentColumn(QSize page);

    /// Whether the desktop wants things to move.
    [[nodiscard]] static bool animates();

    /// Once, before the first window: style, palette and the font of texts that choose none.
    static void applyTo(QApplication& application);
};

}  // namespace halvane::ui
