#pragma once

#include "ui/widgets/TextField.h"

namespace halvane::ui {

/// A field with an image at its left.
class IconTextField final : public TextField {
public:
    /// An image of 20 pixels, by name.
    IconTextField(const QString& imageName, QWidget* parent);

    /// The cursor to the end; but to the start of a text that begins with "@", which is a suffix to
    /// type in front of. Such a text is not selected either when Tab comes to it.
    void placeCursor();

protected:
    void paintBesideText(QPainter& painter) override;
    void focusInEvent(QFocusEvent* event) override;

private:
    void updateFont();
    [[nodiscard]] bool holdsSuffixOnly() const { return text().startsWith(u'@'); }

    QString imageName_;
};

}  // namespace halvane::ui
