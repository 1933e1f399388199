#pragma once

#include "platform/StatusBar.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace halvane::test {

/// A status bar that keeps what was put into it, and whose menus the test chooses from.
class RecordingStatusBar final : public platform::StatusBar {
public:
    struct Shown {
        int length = 0;
        std::string image;
        std::vector<MenuEntry> menu;
    };

    std::unique_ptr<Item> statusItemWithLength(int length) override {
        shown.push_back(std::make_shared<Shown>(Shown{.length = length, .image = {}, .menu = {}}));
        most = std::max(most, shown.size());
        return std::make_unique<RecordingItem>(*this, shown.back());
    }

    std::vector<std::shared_ptr<Shown>> shown;
    std::size_t most = 0;  ///< icons that stood there at one time

private:
    class RecordingItem final : public Item {
    public:
        RecordingItem(RecordingStatusBar& bar, std::shared_ptr<Shown> item) : bar_(bar), item_(std::move(item)) {}
        ~RecordingItem() override { std::erase(bar_.shown, item_); }
        void setImage(const std::string& name, int width, int height) override {
            item_->image = name + " " + std::to_string(width) + "x" + std::to_string(height);
        }
        void setMenu(std::vector<MenuEntry> entries) override { item_->menu = std::move(entries); }

    private:
        RecordingStatusBar& bar_;
        std::shared_ptr<Shown> item_;
    };
};

}  // namespace halvane::test
