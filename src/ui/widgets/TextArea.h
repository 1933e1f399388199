#pragma once

#include <QPlainTextEdit>

namespace halvane::ui {

/// Lines to read on a card of their own, scrolled by wheel and keys; they can be selected and copied. Tab goes past it.
class TextArea final : public QPlainTextEdit {
public:
    TextArea(const QString& name, QWidget* parent);

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
};

}  // namespace halvane::ui
