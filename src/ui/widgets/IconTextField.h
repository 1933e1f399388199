#pragma once

#include <QLineEdit>

namespace halvane::ui {

/// A line of text with an image at its left and a border that says whether it has the keyboard.
class IconTextField final : public QLineEdit {
public:
    /// An image of 20 pixels, by name.
    IconTextField(const QString& imageName, QWidget* parent);

    /// The cursor to the end; but to the start of a text that begins with "@", which is a suffix to
    /// type in front of. Such a text is not selected either when Tab comes to it.
    void placeCursor();

protected:
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void updateFont();
    [[nodiscard]] bool holdsSuffixOnly() const { return text().startsWith(u'@'); }

    QString imageName_;
};

}  // namespace halvane::ui
