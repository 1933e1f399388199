#pragma once

#include <QRect>

class QPainter;

namespace halvane::ui {

/// The ground of the cards that lie on a page.
class CardGround {
public:
    static void paint(QPainter& painter, const QRect& card);
};

}  // namespace halvane::ui
