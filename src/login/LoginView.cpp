#include "login/LoginView.h"

#include "ui/widgets/AlertSheet.h"
#include "ui/widgets/CheckButton.h"
#include "ui/widgets/FilledButton.h"
#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/IconTextField.h"
#include "ui/widgets/ImageView.h"
#include "ui/widgets/LinkButton.h"
#include "ui/widgets/TipLabel.h"

#include <utility>

namespace halvane::login {

using Center = ui::HDCLUICenter;

LoginView::LoginView(const MakeActions& makeActions, MakeMainWindow makeMainWindow)
    : userNameTF(new ui::IconTextField(QStringLiteral("ui_user"), this)),
      passWordTF(new ui::IconTextField(QStringLiteral("ui_lock"), this)),
      tipLabel(new ui::TipLabel(this)),
      loginBtn(new ui::FilledButton(QStringLiteral("登录"), this)),
      autoLogin(new ui::CheckButton(QStringLiteral("自动登录"), this)),
      forgetPW(new ui::LinkButton(QStringLiteral("忘记密码"), this)),
      makeMainWindow_(std::move(makeMainWindow)) {
    userNameTF->setPlaceholderText(QStringLiteral("请输入用户名"));
    passWordTF->setPlaceholderText(QStringLiteral("请输入密码"));
    passWordTF->setEchoMode(QLineEdit::Password);
    autoLogin->setChecked(true);
    placeControls();
    nameControls();
    userNameTF->setFocus();

    actions_ = makeActions(*this);
    connectControls();
    actions_->viewBuilt();
}

// Explicit, so that the procedure is gone before the controls that it speaks to.
LoginView::~LoginView() { actions_.reset(); }

void LoginView::placeControls() {
    constexpr int margin = 32;
    constexpr int width = Center::loginContentSize.width() - 2 * margin;
    constexpr int logo = 72;
    resize(Center::loginContentSize);

    auto* picture = new ui::ImageView(QStringLiteral("login_prompt"), this);
    picture->setGeometry((Center::loginContentSize.width() - logo) / 2, 40, logo, logo);
    userNameTF->setGeometry(margin, 144, width, Center::heightControl);
    passWordTF->setGeometry(margin, 200, width, Center::heightControl);
    tipLabel->setGeometry(margin, 244, width, 32);
    loginBtn->setVisibleGeometry({margin, 276, width, Center::heightControl});

    // The last row runs from 336 to 360, and its drawings line up with the fields: the box stands 2
    // inside its image, the link's title inside its padding.
    constexpr int rowTop = 336 - Center::ringMargin;
    const QSize check = autoLogin->sizeHint();
    autoLogin->setGeometry(QRect(QPoint(margin - 2 - Center::ringMargin, rowTop), check));
    const QSize link = forgetPW->sizeHint();
    const int linkRight = margin + width + ui::LinkButton::padding + Center::ringMargin;
    forgetPW->setGeometry(QRect(QPoint(linkRight - link.width(), rowTop), link));

    setTabOrder(userNameTF, passWordTF);
    setTabOrder(passWordTF, loginBtn);
    setTabOrder(loginBtn, autoLogin);
    setTabOrder(autoLogin, forgetPW);
}

void LoginView::nameControls() {
    setObjectName(QStringLiteral("loginView"));
    userNameTF->setObjectName(QStringLiteral("userNameTF"));
    passWordTF->setObjectName(QStringLiteral("passWordTF"));
    tipLabel->setObjectName(QStringLiteral("tipLabel"));
    loginBtn->setObjectName(QStringLiteral("loginBtn"));
    autoLogin->setObjectName(QStringLiteral("autoLogin"));
    forgetPW->setObjectName(QStringLiteral("forgetPW"));
    // A placeholder goes with the first character, so it cannot be what a screen reader says. Buttons
    // and the tip are called by their texts.
    userNameTF->setAccessibleName(QStringLiteral("用户名"));
    passWordTF->setAccessibleName(QStringLiteral("密码"));
    tipLabel->setControls({userNameTF, passWordTF, loginBtn});
}

void LoginView::connectControls() {
    const auto logIn = [this] { actions_->loginAction(); };
    QObject::connect(userNameTF, &QLineEdit::returnPressed, this, logIn);
    QObject::connect(passWordTF, &QLineEdit::returnPressed, this, logIn);
    QObject::connect(loginBtn, &QPushButton::clicked, this, logIn);
    QObject::connect(forgetPW, &QPushButton::clicked, this, [this] { actions_->forgetPWAction(); });
    QObject::connect(autoLogin, &QCheckBox::toggled, this, [this] {
        if (isSettingState_) return;
        isAutoLoginToggled_ = true;
        actions_->autoLoginAction();
    });
}

ui::IconTextField& LoginView::fieldOf(Field field) const { return field == Field::UserName ? *userNameTF : *passWordTF; }

std::string LoginView::text(Field field) const { return fieldOf(field).text().toStdString(); }

void LoginView::setText(Field field, const std::string& text) {
    fieldOf(field).setText(QString::fromStdString(text));
    fieldOf(field).placeCursor();
    setTexts_[static_cast<std::size_t>(field)] = fieldOf(field).text();
}

bool LoginView::isTyped(Field field) const {
    // What assistive tools enter does not count as modified to the field.
    return fieldOf(field).isModified() || fieldOf(field).text() != setTexts_[static_cast<std::size_t>(field)];
}

bool LoginView::autoLoginState() const { return autoLogin->isChecked(); }

void LoginView::setAutoLoginState(bool on) {
    isSettingState_ = true;
    autoLogin->setChecked(on);
    isSettingState_ = false;
}

void LoginView::setTip(const std::string& text) { tipLabel->setTip(QString::fromStdString(text)); }

void LoginView::setLook(Look look) {
    switch (look) {
        case Look::LogIn:
            loginBtn->setText(QStringLiteral("登录"));
            loginBtn->setGround(ui::FilledButton::Ground::ThemeOrange);
            break;
        case Look::LoggingIn:
            loginBtn->setText(QStringLiteral("正在登录..."));
            loginBtn->setGround(ui::FilledButton::Ground::Busy);
            break;
    }
}

void LoginView::showAlertWithMsg(const std::string& text) { ui::AlertSheet::present(QString::fromStdString(text)); }

void LoginView::showMainWindow() {
    // Later, because the window before may be in the middle of an event of its own.
    if (MainW_) MainW_.release()->deleteLater();
    MainW_ = makeMainWindow_();
    MainW_->setDelegate(this);
    MainW_->center();
    MainW_->makeKeyAndOrderFront();
    if (mainWindowShown) mainWindowShown();
}

bool LoginView::windowShouldClose(ui::HDCLBaseWindow& window) {
    if (&window != MainW_.get()) return true;
    window.orderBack();
    return false;
}

void LoginView::viewDidMoveToWindow() { actions_->viewDidMoveToWindow(); }

}  // namespace halvane::login
