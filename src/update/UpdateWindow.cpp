#include "update/UpdateWindow.h"

#include "ui/widgets/BorderedButton.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/FilledButton.h"
#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/ImageView.h"
#include "ui/widgets/ProgressBar.h"
#include "ui/widgets/TextArea.h"

#include <QAccessible>
#include <QCloseEvent>
#include <QLabel>
#include <algorithm>

namespace halvane::update {

namespace {

using C = ui::HDCLUICenter;

constexpr int kWidth = 440;
constexpr int kMargin = 28;
constexpr int kLogo = 64;
constexpr int kTextLeft = kMargin + kLogo + 20;
constexpr int kTextWidth = kWidth - kTextLeft - kMargin;
constexpr int kHeadingHeight = 32;
constexpr int kLineHeight = 20;
constexpr int kNotesHeight = 176;
constexpr int kGap = 20;
constexpr QSize kButton(112, 40);
constexpr int kButtonGap = 12;

QColor colourOf(UpdateScene::Mood mood) {
    switch (mood) {
        case UpdateScene::Mood::Neutral:
            return C::colorText1;
        case UpdateScene::Mood::Good:
            return C::colorOk;
        case UpdateScene::Mood::Bad:
            return C::colorErr;
    }
    return {};
}

void setTitle(QPushButton& button, const std::string& title) {
    button.setText(QString::fromStdString(title));
    button.setVisible(!title.empty());
}

}  // namespace

UpdateWindow::UpdateWindow() {
    setObjectName(QStringLiteral("UpdateWindow"));
    setWindowTitle(QStringLiteral("软件更新"));
    setStandardButtonHidden(StandardButton::Miniaturize);
    setUpUI();
    UpdateWindow::setScene(UpdateScene());
}

void UpdateWindow::setUpUI() {
    iconImgView = new ui::ImageView(QStringLiteral("login_prompt"), this);
    headingLabel = new ui::ElidedLabel(QString(), C::font(C::Type::Title, QFont::Bold), C::colorText1, this);
    textLabel = new QLabel(this);
    textLabel->setTextFormat(Qt::PlainText);
    textLabel->setWordWrap(true);
    textLabel->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    textLabel->setFont(C::font(C::Type::Caption));
    QPalette palette = textLabel->palette();
    palette.setColor(QPalette::WindowText, C::colorText2);
    textLabel->setPalette(palette);
    notesView = new ui::TextArea(QStringLiteral("更新说明"), this);
    progressBar = new ui::ProgressBar(QStringLiteral("进度"), this);
    secondaryBtn = new ui::BorderedButton(QString(), ui::BorderedButton::Look::Plain, this);
    primaryBtn = new ui::FilledButton(QString(), this);
    headingLabel->setObjectName(QStringLiteral("headingLabel"));
    textLabel->setObjectName(QStringLiteral("textLabel"));
    notesView->setObjectName(QStringLiteral("notesView"));
    progressBar->setObjectName(QStringLiteral("progressBar"));
    primaryBtn->setObjectName(QStringLiteral("primaryBtn"));
    secondaryBtn->setObjectName(QStringLiteral("secondaryBtn"));
    QObject::connect(primaryBtn, &QPushButton::clicked, this, [this] {
        if (onPrimary) onPrimary();
    });
    QObject::connect(secondaryBtn, &QPushButton::clicked, this, [this] {
        if (onSecondary) onSecondary();
    });
}

void UpdateWindow::setScene(const UpdateScene& scene) {
    const auto heading = QString::fromStdString(scene.heading);
    const bool isNews = heading != headingLabel->text();
    headingLabel->setWholeText(heading);
    headingLabel->setColor(colourOf(scene.mood));
    textLabel->setText(QString::fromStdString(scene.text));
    if (const auto notes = QString::fromStdString(scene.notes); notes != notesView->toPlainText()) notesView->setPlainText(notes);
    notesView->setVisible(!scene.notes.empty());
    progressBar->setFraction(scene.fraction);
    progressBar->setVisible(scene.isBusy);
    setTitle(*primaryBtn, scene.primary);
    setTitle(*secondaryBtn, scene.secondary);
    place(scene);
    if (!isNews) return;
    if (isVisible()) setFocus(Qt::OtherFocusReason);  // a key that is still held must not press the next scene's button
    announce();
}

void UpdateWindow::place(const UpdateScene& scene) {
    iconImgView->setGeometry(kMargin, kMargin, kLogo, kLogo);
    headingLabel->setGeometry(kTextLeft, kMargin, kTextWidth, kHeadingHeight);
    const int textHeight = std::max(kLineHeight, textLabel->heightForWidth(kTextWidth));
    textLabel->setGeometry(kTextLeft, kMargin + kHeadingHeight + 4, kTextWidth, textHeight);
    int bottom = std::max(textLabel->geometry().bottom() + 1, kMargin + kLogo) + kGap;
    if (!scene.notes.empty()) {
        notesView->setGeometry(kMargin, bottom, kWidth - 2 * kMargin, kNotesHeight);
        bottom += kNotesHeight + kGap;
    }
    // Kept free in every scene, so that the buttons stay where they are from the download on.
    progressBar->setGeometry(kTextLeft, bottom - kGap, kTextWidth, kGap);
    const auto widthOf = [](const QPushButton& button) { return std::max(kButton.width(), button.sizeHint().width() - 2 * C::ringMargin); };
    int right = kWidth - kMargin;
    for (auto* button : {static_cast<ui::PushButton*>(primaryBtn), static_cast<ui::PushButton*>(secondaryBtn)}) {
        if (button->isHidden()) continue;
        const int width = widthOf(*button);
        button->setVisibleGeometry({right - width, bottom + 4, width, kButton.height()});
        right -= width + kButtonGap;
    }
    setContentSize({kWidth, bottom + 4 + kButton.height() + 24});
}

void UpdateWindow::announce() {
    setAccessibleName(headingLabel->text());
    setAccessibleDescription(textLabel->text());
    if (!isVisible()) return;
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void UpdateWindow::present(Attention attention) {
    if (!isVisible()) center();
    if (attention == Attention::Keyboard) {
        makeKeyAndOrderFront();
    } else {
        orderFront();
    }
}

void UpdateWindow::dismiss() { orderOut(); }

void UpdateWindow::closeEvent(QCloseEvent* event) {
    event->ignore();  // whoever shows the scenes decides
    if (onClosed) onClosed();
}

}  // namespace halvane::update
