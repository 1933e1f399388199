#pragma once

#include "ui/widgets/FocusRing.h"

#include <QPushButton>

namespace halvane::ui {

/// Base of the buttons with a title: keeps a margin for the focus ring around what it draws, which is
/// `visibleRect`. A title that does not fit is elided and repeated in a tool tip. Clicked by Enter as by
/// the space bar. Tab reaches it; a click leaves the keyboard where it was.
class PushButton : public QPushButton {
public:
    PushButton(const QString& title, QWidget* parent);

    /// Places it by what it draws.
    void setVisibleGeometry(const QRect& geometry);
    [[nodiscard]] QRect visibleRect() const;

    [[nodiscard]] QSize sizeHint() const override;

protected:
    virtual void paintGround(QPainter& painter, const QRect& visible) = 0;
    [[nodiscard]] virtual QColor titleColor() const = 0;
    /// Free space left and right of the title.
    [[nodiscard]] virtual int titlePadding() const { return 12; }
    /// Where the title stands.
    [[nodiscard]] virtual QRect titleRect() const;
    [[nodiscard]] virtual Qt::Alignment titleAlignment() const { return Qt::AlignCenter; }
    virtual void paintFocus(QPainter& painter) const;
    [[nodiscard]] const FocusRing& focusRing() const { return ring_; }

    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    [[nodiscard]] bool isHovered() const { return isEnabled() && underMouse(); }

private:
    FocusRing ring_;
};

}  // namespace halvane::ui
