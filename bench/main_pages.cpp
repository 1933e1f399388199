#include "PageTour.h"
#include "support/MainStory.h"
#include "ui/widgets/HDCLUICenter.h"

#include <QApplication>
#include <QPushButton>

// The main window over a company server that does not answer: all pages, and each tool once.
int main(int argc, char** argv) {
    QApplication application(argc, argv);
    halvane::ui::HDCLUICenter::applyTo(application);
    halvane::test::MainStory story;
    const auto window = story.makeMainWindow();
    window->show();
    auto& menu = window->mainView().leftMenuView();
    QCoreApplication::processEvents();
    menu.selectMenuIndex(4);
    for (auto* item : window->findChild<QWidget*>(QStringLiteral("gridView"))->findChildren<QPushButton*>()) {
        item->click();
        window->repaint();
        for (auto* back : window->findChildren<QPushButton*>(QStringLiteral("backBtn")))
            if (back->isVisible()) back->click();
    }
    menu.selectMenuIndex(0);
    halvane::bench::PageTour::run(*window, 5, [&menu](int page) { menu.selectMenuIndex(page); });
    return 0;
}
