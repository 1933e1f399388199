#pragma once

#include "ui/widgets/PictureView.h"

#include <QImage>
#include <optional>
#include <string>

namespace halvane::ui {

class AvatarStore;

/// A person's picture, round, in the size of the view; a placeholder until there is one. Main thread.
class AvatarView final : public PictureView {
public:
    explicit AvatarView(QWidget* parent);

    /// The placeholder, until the picture of that address arrives. Absent or empty: the placeholder.
    void setAddress(AvatarStore& avatars, const std::optional<std::string>& address);
    void setImage(const QImage& image);
    [[nodiscard]] bool hasImage() const { return !image_.isNull(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QImage image_;
    std::string address_;  ///< the one that counts: a later address wins over an earlier one's picture
};

}  // namespace halvane::ui
