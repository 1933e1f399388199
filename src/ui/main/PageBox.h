#pragma once

#include <QWidget>
#include <vector>

namespace halvane::ui {

class PageView;

/// The white card on which one page at a time is shown. Behind pages with a clear ground three arcs round
/// its lower right corner show through. Hidden pages keep their contents.
class PageBox final : public QWidget {
public:
    explicit PageBox(QWidget* parent);

    /// Hidden until it is shown. Takes it over.
    void add(PageView* page);
    void show(PageView* page);
    [[nodiscard]] PageView* shown() const { return shown_; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void place(QWidget* page) const;

    std::vector<PageView*> pages_;
    PageView* shown_ = nullptr;
};

}  // namespace halvane::ui
