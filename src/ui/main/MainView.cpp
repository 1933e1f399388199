#include "ui/main/MainView.h"

#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/ImageView.h"

#include <QPainter>

namespace halvane::ui {

namespace {

using C = HDCLUICenter;

constexpr int kWidth = 456;
constexpr int kPadding = 40;
constexpr int kAvatar = 96;
constexpr int kRow = 44;
constexpr int kRowTitle = 88;

}  // namespace

class MainView::Card final : public QWidget {
public:
    Card(const UserSummary& user, QWidget* parent) : QWidget(parent) {
        auto* avatar = new ImageView(QStringLiteral("loginIcon"), this);
        avatar->setGeometry((kWidth - kAvatar) / 2, kPadding, kAvatar, kAvatar);
        int y = kPadding + kAvatar + 16;
        if (user.nickName) {
            auto* name = addText(*user.nickName, "nickName", {kPadding, y, kWidth - 2 * kPadding, 36}, C::colorText1);
            name->setFont(C::font(C::Type::Heading, QFont::Bold));
            name->setAlignment(Qt::AlignCenter);
            y += 36;
        }
        y += 24;
        addRow(user.departmentName, QStringLiteral("部门"), "departmentName", y);
        addRow(user.email, QStringLiteral("邮箱"), "email", y);
        addRow(user.workAddress, QStringLiteral("职场"), "workAddress", y);
        resize(kWidth, y + kPadding - (lines_.empty() ? 24 : 12));
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(C::colorLine);
        painter.setBrush(C::colorCard);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), C::radiusCard, C::radiusCard);
        for (const int y : lines_) painter.fillRect(kPadding, y, kWidth - 2 * kPadding, 1, C::colorLine);
    }

private:
    ElidedLabel* addText(const std::string& text, const char* objectName, const QRect& geometry, const QColor& color) {
        auto* label = new ElidedLabel(this);
        label->setObjectName(QLatin1String(objectName));
        label->setGeometry(geometry);
        QPalette colors = label->palette();
        colors.setColor(QPalette::WindowText, color);
        label->setPalette(colors);
        label->setWholeText(QString::fromStdString(text));
        return label;
    }

    void addRow(const std::optional<std::string>& value, const QString& title, const char* objectName, int& y) {
        if (!value || value->empty()) return;
        lines_.push_back(y);
        addText(title.toStdString(), "", {kPadding, y, kRowTitle, kRow}, C::colorText2);
        addText(*value, objectName, {kPadding + kRowTitle, y, kWidth - 2 * kPadding - kRowTitle, kRow}, C::colorText1);
        y += kRow;
    }

    std::vector<int> lines_;  ///< where the hairlines above the rows stand
};

MainView::MainView(const UserSummary& user) : card_(new Card(user, this)) {
    setObjectName(QStringLiteral("mainView"));
    resize(C::mainContentSize);
}

void MainView::resizeEvent(QResizeEvent*) { card_->move((width() - card_->width()) / 2, (height() - card_->height()) / 2); }

}  // namespace halvane::ui
