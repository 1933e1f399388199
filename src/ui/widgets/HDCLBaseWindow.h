#pragma once

#include "ui/widgets/WindowDelegate.h"

#include <QFlags>
#include <QPointer>
#include <QWidget>
#include <array>
#include <optional>

namespace halvane::ui {

/// A window of the program: white, movable by dragging its background, with the desktop's own frame and
/// shadow. Main thread. It owns neither its content nor its delegate; a content that outlives it stays,
/// without a window, and a delegate must outlive it or be taken back.
class HDCLBaseWindow : public QWidget {
public:
    enum StyleMaskBit { Titled = 1, Closable = 2, Miniaturizable = 4, Resizable = 8 };
    Q_DECLARE_FLAGS(StyleMask, StyleMaskBit)
    enum class StandardButton { Close = 0, Miniaturize = 1, Zoom = 2 };

    HDCLBaseWindow();
    ~HDCLBaseWindow() override;

    void setDelegate(WindowDelegate* delegate) { delegate_ = delegate; }

    [[nodiscard]] StyleMask styleMask() const { return styleMask_; }
    /// Before the window is first shown. Without Resizable the content keeps its size.
    void setStyleMask(StyleMask mask);
    /// Before the window is first shown. A desktop may show the button all the same.
    void setStandardButtonHidden(StandardButton button);

    /// The content fills the window from now on; an earlier one leaves it.
    virtual void setContentView(QWidget* view);
    [[nodiscard]] QWidget* contentView() const { return content_; }
    /// Without the desktop's frame.
    void setContentSize(QSize size);
    /// Tiles the ground with a named image.
    void setBackgroundPattern(const QString& imageName, QSize tile);

    [[nodiscard]] virtual bool canBecomeKeyWindow() const { return true; }
    [[nodiscard]] virtual bool canBecomeMainWindow() const { return true; }
    /// The size that the window takes instead of the one it is about to get.
    [[nodiscard]] virtual QSize windowWillResize(QSize toSize) const { return toSize; }

    /// In the middle of the screen's usable part.
    void center();
    /// On the screen, above the others. Takes the keyboard only where the desktop gives it to windows
    /// that are new.
    void orderFront();
    /// Below the others; minimised where windows cannot be ordered.
    void orderBack();
    /// Off the screen.
    void orderOut() { hide(); }
    void makeKeyAndOrderFront();

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void applyFrame();
    void restrictSize();

    StyleMask styleMask_ = StyleMask(Titled | Closable | Miniaturizable | Resizable);
    std::array<bool, 3> hiddenButtons_{};
    WindowDelegate* delegate_ = nullptr;
    QPointer<QWidget> content_;
    QSize contentSize_;                ///< as last set
    std::optional<QPoint> dragStart_;  ///< where the button went down on the background
};

Q_DECLARE_OPERATORS_FOR_FLAGS(HDCLBaseWindow::StyleMask)

}  // namespace halvane::ui
