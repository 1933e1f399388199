#pragma once

#include "ui/widgets/RowView.h"

namespace halvane::ui {

/// One entry of the left menu: an image and a title, both in orange when its page is shown.
class MainMenuCell final : public RowView {
public:
    struct Entry {
        QString title;
        QString selectedImage;
        QString unselectedImage;
    };

    explicit MainMenuCell(Entry entry);

    /// Name of the image that it shows now.
    [[nodiscard]] QString imageName() const { return isSelected() ? entry_.selectedImage : entry_.unselectedImage; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Entry entry_;
};

}  // namespace halvane::ui
