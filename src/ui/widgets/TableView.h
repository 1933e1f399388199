#pragma once

#include <QScrollArea>
#include <functional>
#include <vector>

namespace halvane::ui {

class RowView;

/// A list of rows of one height. One of its rows is a stop of the Tab key; from there the arrow keys, Home,
/// End and the page keys move along, the space bar and Enter choose. Every row has its view from the first
/// reload on, so it is for lists that a person can read, not for thousands. Main thread.
class TableView final : public QScrollArea {
public:
    enum class Selection {
        FollowsKeyboard,  ///< where choosing costs nothing
        OnChoice          ///< a click, the space bar or Enter
    };
    enum class Scrolling { Never, WhenNeeded };
    enum class Frame { None, Round };

    struct Settings {
        int rowHeight = 0;
        Selection selection = Selection::OnChoice;
        Scrolling scrolling = Scrolling::WhenNeeded;
        Frame frame = Frame::None;
    };
    /// Asked by `reloadData`, row by row from 0.
    struct DataSource {
        std::function<int()> numberOfRows;
        /// The view of a row, filled: the one it had before (null at first), or a new one, which the table
        /// then owns.
        std::function<RowView*(int row, RowView* before)> viewForRow;
    };

    TableView(const QString& name, const Settings& settings, DataSource dataSource, QWidget* parent);

    /// Who chose a row that was not selected learns of it here, after `selectedRow` has changed; may reload.
    std::function<void()> selectionDidChange;

    /// Keeps the selection as far as its row still exists. A row that held the keyboard keeps it.
    void reloadData();

    [[nodiscard]] int selectedRow() const { return selectedRow_; }  ///< -1: none
    /// Without telling anybody; -1 for none.
    void selectRow(int row);

    [[nodiscard]] const std::vector<RowView*>& rows() const { return rows_; }
    /// The row that Tab stops at, until the keyboard moves on. Scrolls it into sight.
    void setTabStop(int row) { setTabStop(row, Sight::Bring); }
    /// The keyboard to that row.
    void takeKeyboard(Qt::FocusReason reason);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    class CornerFrame;

    void placeRows();
    void adopt(int row, RowView* view);
    void orderTabs();
    void choose(int row);
    void moveTo(int row);
    enum class Sight { Bring, Leave };
    void setTabStop(int row, Sight sight);
    [[nodiscard]] int rowWithKeyboard() const;
    [[nodiscard]] bool has(int row) const { return row >= 0 && row < static_cast<int>(rows_.size()); }

    Settings settings_;
    DataSource dataSource_;
    std::vector<RowView*> rows_;  ///< children of the scrolled widget
    QWidget* anchor_;             ///< never shown; after it come the rows in the order of Tab
    CornerFrame* frame_ = nullptr;
    int selectedRow_ = -1;
    int tabStop_ = 0;
};

}  // namespace halvane::ui
