#pragma once

#include <QLineEdit>

namespace halvane::ui {

/// A line of text whose border says whether it has the keyboard. Enter counts once, however long it is held.
class TextField : public QLineEdit {
public:
    /// `textLeft`: where its text begins.
    explicit TextField(QWidget* parent, int textLeft = 14);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

    /// Upon the ground, beneath the text.
    virtual void paintBesideText(QPainter& /*painter*/) {}
};

}  // namespace halvane::ui
