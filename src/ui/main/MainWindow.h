#pragma once

#include "ui/widgets/HDCLBaseWindow.h"

#include <functional>
#include <memory>

namespace halvane::ui {

class MainView;

/// The window after the login. Made anew at every login. Main thread.
class MainWindow final : public HDCLBaseWindow {
public:
    using MakeMainView = std::function<std::unique_ptr<MainView>()>;

    /// `makeMainView` is called once, inside the constructor, when the content is first needed.
    explicit MainWindow(MakeMainView makeMainView);
    ~MainWindow() override;

    /// Made on first access.
    [[nodiscard]] MainView& mainView();

private:
    MakeMainView makeMainView_;
    std::unique_ptr<MainView> mainView_;
};

}  // namespace halvane::ui
