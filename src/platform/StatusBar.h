#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace halvane::platform {

/// The desktop's status bar: the place of small icons with menus. A desktop may have none, or get one, lose it
/// and get it back while the program runs; items are then shown whenever there is one. Main thread.
class StatusBar {
public:
    struct MenuEntry {
        std::string title;
        std::function<void()> action;
        std::string keyEquivalent;  ///< "" for none
    };

    /// One icon, for as long as it lives. An action may destroy the item.
    class Item {
    public:
        virtual ~Item() = default;
        /// By its name, in logical pixels; never scaled to the bar.
        virtual void setImage(const std::string& name, int width, int height) = 0;
        virtual void setMenu(std::vector<MenuEntry> entries) = 0;
    };

    /// As wide as the bar is high.
    static constexpr int kSquareLength = -2;

    virtual ~StatusBar() = default;
    [[nodiscard]] virtual std::unique_ptr<Item> statusItemWithLength(int length) = 0;
};

}  // namespace halvane::platform
