#include "PageTour.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QStackedWidget>

// The peer of the main window: the least that a Qt Widgets program with a list and five pages of text can be.
int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QWidget window;
    auto* list = new QListWidget;
    auto* pages = new QStackedWidget;
    for (const char* title : {"安全", "设备", "网络", "服务", "功能"}) {
        list->addItem(QString::fromUtf8(title));
        pages->addWidget(new QLabel(QString::fromUtf8(title)));
    }
    auto* row = new QHBoxLayout(&window);
    row->addWidget(list, 1);
    row->addWidget(pages, 4);
    QObject::connect(list, &QListWidget::currentRowChanged, pages, &QStackedWidget::setCurrentIndex);
    window.resize(960, 640);
    window.show();
    list->setCurrentRow(0);
    halvane::bench::PageTour::run(window, 5, [list](int page) { list->setCurrentRow(page); });
    return 0;
}
