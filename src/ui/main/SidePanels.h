#pragma once

#include <functional>
#include <memory>

namespace halvane::tools {
class UpdateVersionPanel;
}

namespace halvane::ui {

class SelectAddressWindow;

/// The two windows beside the main window. Each is made on first use and kept for the life of the program,
/// while every login gets a main window of its own. Main thread.
class SidePanels {
public:
    using MakeVersionPanel = std::function<std::unique_ptr<tools::UpdateVersionPanel>()>;
    using MakeSystemSetWindow = std::function<std::unique_ptr<SelectAddressWindow>()>;

    SidePanels(MakeVersionPanel makeVersionPanel, MakeSystemSetWindow makeSystemSetWindow);
    ~SidePanels();

    [[nodiscard]] tools::UpdateVersionPanel& versionPanel();
    [[nodiscard]] SelectAddressWindow& systemSetWindow();

    // Nothing happens to one that was not made.
    void closeVersionPanel();
    void closeSystemSetWindow();

private:
    MakeVersionPanel makeVersionPanel_;
    MakeSystemSetWindow makeSystemSetWindow_;
    std::unique_ptr<tools::UpdateVersionPanel> versionPanel_;
    std::unique_ptr<SelectAddressWindow> systemSetWindow_;
};

}  // namespace halvane::ui
