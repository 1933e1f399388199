#pragma once

#include <QPointer>
#include <QWidget>

namespace halvane::ui {

/// Lies over all of another view, keeps the pointer and the keyboard to itself, and shows one raised
/// panel. Tab goes round within it; Escape dismisses it. What had the keyboard before gets it back.
/// Owned by whoever made it, whether it is shown or not, and withdrawn or destroyed before the view that
/// it lies over. Main thread.
class OverlayView : public QWidget {
public:
    enum class Ground { Clear, Scrim };

    /// `name`: what a screen reader calls it.
    OverlayView(const QString& name, Ground ground);

    [[nodiscard]] bool isOverlaid() const { return view_ != nullptr; }

protected:
    /// Over `view`, in its size and following it, with the keyboard.
    void overlay(QWidget* view);
    /// Off its view.
    void withdraw();

    /// The raised part, filled by the subclass, which gives it its size.
    [[nodiscard]] QWidget& panel() const;
    /// Where the panel stands in a view of this size.
    [[nodiscard]] virtual QPoint panelPlace(QSize view) const = 0;
    /// Who gets the keyboard at first; null: the first control that takes it.
    [[nodiscard]] virtual QWidget* firstResponder() const { return nullptr; }
    /// Escape was pressed.
    virtual void cancelOperation() = 0;
    /// Somebody clicked beside the panel.
    virtual void clickedOutside() {}

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class RaisedPanel;

    void rememberKeyboard();
    void giveKeyboardBack(QWidget& view);
    void fadeIn();

    Ground ground_;
    RaisedPanel* panel_;
    QPointer<QWidget> view_;
    QPointer<QWidget> before_;                       ///< who had the keyboard
    Qt::FocusReason reason_ = Qt::OtherFocusReason;  ///< how the keyboard comes and goes
};

}  // namespace halvane::ui
