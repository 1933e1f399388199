#pragma once

#include <QWidget>
#include <functional>
#include <vector>

namespace halvane::ui {

/// Items side by side, each an image above a title, all of one width. Tab goes from one to the next, and
/// the arrow keys do too.
class GridView final : public QWidget {
public:
    struct Item {
        QString title;
        QString imageName;  ///< of 72 pixels
    };

    GridView(const std::vector<Item>& items, QWidget* parent);

    /// An item was clicked, or worked by keyboard; its place counts from 0.
    std::function<void(int index)> didClickItem;

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    class ItemButton;

    std::vector<ItemButton*> items_;
};

}  // namespace halvane::ui
