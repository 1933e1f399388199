#include "ui/main/MainMenuHeadView.h"

#include "session/HDCLUserModel.h"
#include "ui/main/AvatarView.h"
#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/NamedImage.h"

#include <QPainter>

namespace halvane::ui {

namespace {

using C = HDCLUICenter;

constexpr int kAvatar = 40;
constexpr int kPadding = 12;
constexpr int kChevron = 16;
constexpr int kGap = 12;

}  // namespace

MainMenuHeadView::MainMenuHeadView(AvatarStore& avatars, QWidget* parent)
    : PushButton(QString(), parent), avatars_(avatars), avatar_(new AvatarView(this)) {
    setFont(C::font(C::Type::Body, QFont::Bold));
    setAccessibleDescription(QStringLiteral("打开个人菜单"));
    avatar_->setAttribute(Qt::WA_TransparentForMouseEvents);
    avatar_->setGeometry(C::ringMargin + kPadding, C::ringMargin + 10, kAvatar, kAvatar);
    QObject::connect(this, &QPushButton::clicked, this, [this] {
        if (clickAction) clickAction();
    });
}

void MainMenuHeadView::setModel(const session::HDCLUserModel& model) {
    avatar_->setAddress(avatars_, model.header_img);
    setText(QString::fromStdString(model.nick_name.value_or("")).simplified());
    setShortcut({});  // an "&" in a name makes no key
    // A button without a word would have no name.
    setAccessibleName(text().isEmpty() ? QStringLiteral("个人菜单") : text());
}

void MainMenuHeadView::setOpen(bool open) {
    open_ = open;
    update();
}

void MainMenuHeadView::paintGround(QPainter& painter, const QRect& visible) {
    if (isDown() || isHovered() || open_) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(isDown() ? C::colorPressed : C::colorHover);
        painter.drawRoundedRect(visible, C::radiusRow, C::radiusRow);
    }
    NamedImage::paint(painter, QStringLiteral("ui_chevron_down"),
                      {visible.right() + 1 - kPadding - kChevron, (height() - kChevron) / 2, kChevron, kChevron});
}

void MainMenuHeadView::paintFocus(QPainter& painter) const { focusRing().paint(painter, visibleRect(), C::radiusRow); }

QColor MainMenuHeadView::titleColor() const { return C::colorText1; }

QRect MainMenuHeadView::titleRect() const {
    const QRect visible = visibleRect();
    return visible.adjusted(kPadding + kAvatar + kGap, 0, -kPadding - kChevron - kGap / 2, 0);
}

}  // namespace halvane::ui
