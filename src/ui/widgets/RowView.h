#pragma once

#include "ui/widgets/FocusRing.h"

#include <QAccessible>
#include <QMargins>
#include <QWidget>
#include <functional>
#include <optional>

namespace halvane::ui {

/// One row of a TableView, which places it, selects it and moves the keyboard to it. Screen readers call
/// it by its accessible name; its parts are read to them with it.
class RowView : public QWidget {
public:
    struct Look {
        QMargins inset;  ///< between the row's place in the table and what it draws
        int radius = 0;
        QColor selected;       ///< an invalid colour: drawn as if not selected
        QColor selectedHover;  ///< an invalid colour: as selected
        QColor hover;
        QColor pressed;
        bool line = false;  ///< a hairline beneath, but for the last row within a frame
    };

    explicit RowView(const Look& look);

    [[nodiscard]] bool isSelected() const { return selected_; }
    void setSelected(bool selected);
    /// Whether it has the keyboard of somebody who works by keyboard.
    [[nodiscard]] bool isRingShown() const { return ring_.isShown(); }

    /// The state of the box or button that the row shows; absent when it shows none.
    [[nodiscard]] virtual std::optional<bool> isChecked() const { return std::nullopt; }
    [[nodiscard]] virtual QAccessible::Role role() const { return QAccessible::ListItem; }

    // Set by the table.
    void setLineHidden(bool hidden) { lineHidden_ = hidden; }
    std::function<void()> onActivated;  ///< by the pointer, or by what stands in for a person
    std::function<void()> onFocused;

protected:
    /// What the row draws within, in its own coordinates.
    [[nodiscard]] QRect visibleRect() const { return rect().marginsRemoved(look_.inset); }
    /// Whether it is drawn as selected.
    [[nodiscard]] virtual bool isMarked() const { return selected_; }
    /// Draws the accessible name in one line; what does not fit is elided, and a tool tip then shows the whole.
    void paintName(QPainter& painter, const QRect& area, const QFont& font);

    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    [[nodiscard]] QColor groundColor() const;

    Look look_;
    FocusRing ring_;
    bool selected_ = false;
    bool pressed_ = false;
    bool lineHidden_ = false;
    bool nameCut_ = false;  ///< as last drawn
};

}  // namespace halvane::ui
