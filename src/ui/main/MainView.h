#pragma once

#include "ui/main/UserSummary.h"
#include "ui/widgets/ContentView.h"

namespace halvane::ui {

/// Content of the main window: a card with the signed-in user. Main thread.
class MainView final : public ContentView {
public:
    explicit MainView(const UserSummary& user);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    class Card;

    Card* card_;
};

}  // namespace halvane::ui
