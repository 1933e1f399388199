#pragma once

#include <QDialog>

namespace halvane::ui {

/// The warning sheet: titled "提示", with a text and the button "确定". Belongs to its window and deletes
/// itself when it is answered.
class AlertSheet final : public QDialog {
public:
    AlertSheet(const QString& text, QWidget* window);

    /// Shows one on the application's first window, that is the one that was put on the screen before
    /// all others, and returns at once. Without a window nothing is shown.
    static void present(const QString& text);
    /// On the window in which the person is, on the first one when that is none of ours.
    static void presentWhereThePersonIs(const QString& text);

protected:
    void showEvent(QShowEvent* event) override;
};

}  // namespace halvane::ui
