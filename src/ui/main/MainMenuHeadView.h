#pragma once

#include "ui/widgets/PushButton.h"

#include <functional>

namespace halvane::session {
struct HDCLUserModel;
}

namespace halvane::ui {

class AvatarStore;
class AvatarView;

/// Head of the left menu: the person's picture and name, which is a button. Main thread.
class MainMenuHeadView final : public PushButton {
public:
    MainMenuHeadView(AvatarStore& avatars, QWidget* parent);

    std::function<void()> clickAction;

    void setModel(const session::HDCLUserModel& model);
    /// Whether what it opens is open.
    void setOpen(bool open);

protected:
    void paintGround(QPainter& painter, const QRect& visible) override;
    void paintFocus(QPainter& painter) const override;
    [[nodiscard]] QColor titleColor() const override;
    [[nodiscard]] QRect titleRect() const override;
    [[nodiscard]] Qt::Alignment titleAlignment() const override { return Qt::AlignVCenter | Qt::AlignLeft; }

private:
    AvatarStore& avatars_;
    AvatarView* avatar_;
    bool open_ = false;
};

}  // namespace halvane::ui
