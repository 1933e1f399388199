#include <QApplication>
#include <QLabel>

// The peer of the login window: the least that a Qt Widgets program with one Chinese text can be.
int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QLabel label(QStringLiteral("登录"));
    label.resize(330, 400);
    label.setAlignment(Qt::AlignCenter);
    label.show();
    return QApplication::exec();
}
