#include "ui/widgets/TableView.h"

#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/RowView.h"
#include "ui/widgets/ScrollBar.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScrollBar>
#include <algorithm>
#include <utility>

namespace halvane::ui {

namespace {

using C = HDCLUICenter;

}  // namespace

/// Lies on top: the round border, and beyond it the ground of the card.
class TableView::CornerFrame final : public QWidget {
public:
    explicit CornerFrame(QWidget* parent) : QWidget(parent) { setAttribute(Qt::WA_TransparentForMouseEvents); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QPainterPath border;
        border.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), C::radiusCard, C::radiusCard);
        QPainterPath beyond;
        beyond.addRect(rect());
        painter.fillPath(beyond.subtracted(border), C::colorCard);
        painter.setPen(C::colorLine);
        painter.drawPath(border);
    }
};

TableView::TableView(const QString& name, const Settings& settings, DataSource dataSource, QWidget* parent)
    : QScrollArea(parent), settings_(settings), dataSource_(std::move(dataSource)), anchor_(new QWidget) {
    setAccessibleName(name);
    setFocusPolicy(Qt::NoFocus);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    if (settings.scrolling == Scrolling::Never) {
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    } else {
        // Always there, so that rows do not change their width; its thumb only when there is a way to go.
        setVerticalScrollBarPolicy(settings.frame == Frame::None ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAsNeeded);
        QScrollBar* bar = verticalScrollBar();
        ScrollBar::applyTo(*bar);
        QObject::connect(bar, &QScrollBar::rangeChanged, bar, [bar](int least, int most) { bar->setEnabled(most > least); });
    }
    auto* content = new QWidget;
    setWidget(content);
    content->setAutoFillBackground(false);
    anchor_->setParent(content);
    anchor_->setFocusPolicy(Qt::ClickFocus);  // without one it would not count as a place in the order
    anchor_->hide();
    viewport()->setAutoFillBackground(false);
    if (settings.frame == Frame::Round) {
        setViewportMargins(1, 1, 1, 1);
        frame_ = new CornerFrame(this);
    }
}

void TableView::reloadData() {
    const int keyboard = rowWithKeyboard();
    const int count = std::max(0, dataSource_.numberOfRows());
    const std::vector<RowView*> before = std::exchange(rows_, {});
    for (int row = 0; row < count; ++row) {
        RowView* old = row < static_cast<int>(before.size()) ? before[static_cast<std::size_t>(row)] : nullptr;
        adopt(row, dataSource_.viewForRow(row, old));
    }
    // Later, because the reload may come out of a row's own event.
    for (RowView* old : before) {
        if (std::find(rows_.begin(), rows_.end(), old) != rows_.end()) continue;
        old->hide();
        old->deleteLater();
    }
    if (!has(selectedRow_)) selectedRow_ = -1;
    for (int row = 0; row < count; ++row) {
        rows_[static_cast<std::size_t>(row)]->setSelected(row == selectedRow_);
        rows_[static_cast<std::size_t>(row)]->setLineHidden(frame_ && row == count - 1);
    }
    setTabStop(std::clamp(tabStop_, 0, std::max(0, count - 1)), Sight::Leave);
    orderTabs();
    placeRows();
    if (has(keyboard) && rowWithKeyboard() != keyboard) rows_[static_cast<std::size_t>(keyboard)]->setFocus(Qt::OtherFocusReason);
}

void TableView::adopt(int row, RowView* view) {
    rows_.push_back(view);
    view->onActivated = [this, row] { choose(row); };
    view->onFocused = [this, view, row] { setTabStop(row, view->isRingShown() ? Sight::Bring : Sight::Leave); };
    if (view->parentWidget() == widget()) return;
    view->setParent(widget());
    view->show();
}

/// Rows that were made later than the controls that follow the table still come before them.
void TableView::orderTabs() {
    QWidget* last = anchor_;
    for (RowView* row : rows_) {
        setTabOrder(last, row);
        last = row;
        for (QWidget* part : row->findChildren<QWidget*>()) {
            if (part->focusPolicy() == Qt::NoFocus) continue;
            setTabOrder(last, part);
            last = part;
        }
    }
}

void TableView::placeRows() {
    const int width = viewport()->width();
    widget()->resize(width, static_cast<int>(rows_.size()) * settings_.rowHeight);
    int y = 0;
    for (RowView* row : rows_) {
        row->setGeometry(0, y, width, settings_.rowHeight);
        y += settings_.rowHeight;
    }
    if (!frame_) return;
    frame_->setGeometry(rect());
    frame_->raise();
}

void TableView::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    placeRows();
}

void TableView::selectRow(int row) {
    selectedRow_ = has(row) ? row : -1;
    for (int each = 0; each < static_cast<int>(rows_.size()); ++each)
        rows_[static_cast<std::size_t>(each)]->setSelected(each == selectedRow_);
    if (selectedRow_ >= 0) setTabStop(selectedRow_, Sight::Leave);
}

void TableView::choose(int row) {
    if (!has(row)) return;
    if (rowWithKeyboard() != row) rows_[static_cast<std::size_t>(row)]->setFocus(Qt::MouseFocusReason);
    if (row == selectedRow_) return;
    selectRow(row);
    if (selectionDidChange) selectionDidChange();
}

void TableView::moveTo(int row) {
    if (!has(row)) return;
    RowView* view = rows_[static_cast<std::size_t>(row)];
    view->setFocus(Qt::TabFocusReason);
    ensureWidgetVisible(view, 0, 0);
    if (settings_.selection == Selection::FollowsKeyboard) choose(row);
}

void TableView::takeKeyboard(Qt::FocusReason reason) {
    if (has(tabStop_)) rows_[static_cast<std::size_t>(tabStop_)]->setFocus(reason);
}

void TableView::setTabStop(int row, Sight sight) {
    tabStop_ = row;
    // Not under the pointer of somebody who clicks.
    if (sight == Sight::Bring && has(row)) ensureWidgetVisible(rows_[static_cast<std::size_t>(row)], 0, 0);
    for (int each = 0; each < static_cast<int>(rows_.size()); ++each)
        rows_[static_cast<std::size_t>(each)]->setFocusPolicy(each == row ? Qt::StrongFocus : Qt::ClickFocus);
}

int TableView::rowWithKeyboard() const {
    const QWidget* focused = QApplication::focusWidget();
    for (int row = 0; row < static_cast<int>(rows_.size()); ++row) {
        const RowView* view = rows_[static_cast<std::size_t>(row)];
        if (view == focused || view->isAncestorOf(focused)) return row;
    }
    return -1;
}

void TableView::keyPressEvent(QKeyEvent* event) {
    const int row = rowWithKeyboard();
    if (row < 0) return event->ignore();
    const int last = static_cast<int>(rows_.size()) - 1;
    const int page = std::max(1, viewport()->height() / settings_.rowHeight);
    switch (event->key()) {
        case Qt::Key_Up:
            return moveTo(std::max(0, row - 1));
        case Qt::Key_Down:
            return moveTo(std::min(last, row + 1));
        case Qt::Key_Home:
            return moveTo(0);
        case Qt::Key_End:
            return moveTo(last);
        case Qt::Key_PageUp:
            return moveTo(std::max(0, row - page));
        case Qt::Key_PageDown:
            return moveTo(std::min(last, row + page));
        case Qt::Key_Space:
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (!event->isAutoRepeat()) choose(row);
            return;
        default:
            event->ignore();
    }
}

}  // namespace halvane::ui
