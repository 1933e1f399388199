#include "update/UpdateWindow.h"

#include "ui/widgets/BorderedButton.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/FilledButton.h"
#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/ImageView.h"
#include "ui/widgets/ProgressBar.h"
#include "ui/widgets/TextArea.h"

#include <QAccessible>
#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <algorithm>

namespace halvane::update {

namespace {

using C = ui::HDCLUICenter;

constexpr QSize kSize(440, 340);
constexpr int kMargin = 28;
constexpr int kLogo = 64;
constexpr int kTextLeft = kMargin + kLogo + 20;
constexpr int kTextWidth = kSize.width() - kTextLeft - kMargin;
constexpr int kHeadingHeight = 32;
constexpr int kTextHeight = 40;   // two lines
constexpr int kAloneHeight = 80;  // four, where nothing stands below them
constexpr int kGap = 20;
constexpr QSize kButton(112, 40);
constexpr int kButtonTop = kSize.height() - 24 - kButton.height();
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
    setContentSize(kSize);
    sinceNews_.start();
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
    QObject::connect(primaryBtn, &QPushButton::clicked, this, [this] { pressed(onPrimary); });
    QObject::connect(secondaryBtn, &QPushButton::clicked, this, [this] { pressed(onSecondary); });
}

void UpdateWindow::pressed(const std::function<void()>& action) {
    if (action && sinceNews_.elapsed() >= QApplication::doubleClickInterval()) action();
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
    place();
    if (!isNews) return;
    sinceNews_.start();
    if (isVisible()) setFocus(Qt::OtherFocusReason);  // a key that is still held must not press the next scene's button
    announce();
}

void UpdateWindow::place() {
    const bool isAlone = notesView->isHidden() && progressBar->isHidden();
    iconImgView->setGeometry(kMargin, kMargin, kLogo, kLogo);
    headingLabel->setGeometry(kTextLeft, kMargin, kTextWidth, kHeadingHeight);
    textLabel->setGeometry(kTextLeft, kMargin + kHeadingHeight + 4, kTextWidth, isAlone ? kAloneHeight : kTextHeight);
    constexpr int kBelowText = kMargin + kHeadingHeight + 4 + kTextHeight;
    constexpr int kNotesTop = kBelowText + kGap + 4;
    notesView->setGeometry(kMargin, kNotesTop, kSize.width() - 2 * kMargin, kButtonTop - kGap - kNotesTop);
    progressBar->setGeometry(kTextLeft, kBelowText, kTextWidth, kGap);
    const auto widthOf = [](const QPushButton& button) { return std::max(kButton.width(), button.sizeHint().width() - 2 * C::ringMargin); };
    const int primaryWidth = widthOf(*primaryBtn);
    const int primaryLeft = kSize.width() - kMargin - primaryWidth;
    primaryBtn->setVisibleGeometry({primaryLeft, kButtonTop, primaryWidth, kButton.height()});
    // Also where there is no key button: none of the two shall ever stand where the other did.
    const int secondaryWidth = widthOf(*secondaryBtn);
    secondaryBtn->setVisibleGeometry({primaryLeft - kButtonGap - secondaryWidth, kButtonTop, secondaryWidth, kButton.height()});
}

void UpdateWindow::announce() {
    setAccessibleName(headingLabel->text());
    setAccessibleDescription(textLabel->text());
    if (!isVisible()) return;
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void UpdateWindow::present(Attention attention) {
    qApp->installEventFilter(this);
    setAttribute(Qt::WA_ShowWithoutActivating, attention == Attention::Quiet);
    if (!isVisible()) center();
    if (attention == Attention::Keyboard) {
        makeKeyAndOrderFront();
    } else {
        orderFront();
    }
}

void UpdateWindow::dismiss() {
    qApp->removeEventFilter(this);
    orderOut();
}

/// The first sign-in of the day brings the main window just after the offer. A panel is what a person asked for, and may cover it. Desktops
/// lift what becomes active, so that this is waited for.
bool UpdateWindow::eventFilter(QObject* object, QEvent* event) {
    if (dynamic_cast<ui::HDCLBaseWindow*>(object) != nullptr && dynamic_cast<ui::PanelWindow*>(object) == nullptr) {
        if (event->type() == QEvent::Show && !event->spontaneous()) newcomer_ = object;
        if (event->type() == QEvent::WindowActivate && newcomer_ == object) {
            newcomer_.clear();
            raise();
        }
    }
    return PanelWindow::eventFilter(object, event);
}

void UpdateWindow::closeEvent(QCloseEvent* event) {
    event->ignore();  // whoever shows the scenes decides
    if (onClosed) onClosed();
}

}  // namespace halvane::update
