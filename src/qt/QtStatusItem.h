#pragma once

#include "qt/QtStatusBar.h"
#include "qt/StatusBarWatch.h"

#include <QIcon>
#include <QMenu>
#include <QSystemTrayIcon>
#include <memory>

namespace halvane::qt {

/// One icon with its menu. It is made when there is a status bar to show it: Qt decides once in a program's
/// life, with its first icon, which protocol it speaks. From then on Qt follows the bar, should it go and come
/// back. The menu opens with either button, on a Wayland desktop with the one that it opens menus with. Main
/// thread.
class QtStatusItem final : public platform::StatusBar::Item {
public:
    explicit QtStatusItem(QtStatusBar::LoadImage loadImage);
    ~QtStatusItem() override;
    QtStatusItem(const QtStatusItem&) = delete;
    QtStatusItem& operator=(const QtStatusItem&) = delete;

    void setImage(const std::string& name, int width, int height) override;
    void setMenu(std::vector<platform::StatusBar::MenuEntry> entries) override;

private:
    void makeIcon();

    QtStatusBar::LoadImage loadImage_;
    QIcon image_;
    std::unique_ptr<QMenu> menu_;
    std::unique_ptr<QSystemTrayIcon> icon_;  ///< null while there was no status bar
    StatusBarWatch watch_;
};

}  // namespace halvane::qt
