#pragma once

#include "ui/widgets/RowView.h"
#include "ui/widgets/TableView.h"

#include <gtest/gtest.h>
#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <string>

namespace halvane::test {

/// A view in a window of its own, worked with keys and the pointer.
template <typename View>
class ViewTest : public testing::Test {
protected:
    void show(View& view, QSize size = {746, 614}) {
        view_ = &view;
        view.resize(size);
        view.show();
        view.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(view.window()));
    }
    template <typename T = QWidget>
    T& control(const char* name) {
        auto* found = dynamic_cast<T*>(view_->template findChild<QWidget*>(QLatin1String(name)));
        if (!found) throw std::logic_error(std::string("no control ") + name);
        return *found;
    }
    std::string text(const char* name) { return control<QLabel>(name).text().toStdString(); }
    void click(const char* name) { QTest::mouseClick(&control(name), Qt::LeftButton); }
    ui::TableView& table() { return control<ui::TableView>("tableView"); }
    void clickRow(std::size_t row) { QTest::mouseClick(table().rows().at(row), Qt::LeftButton, {}, {300, 40}); }
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(QApplication::focusWidget(), key, modifiers); }
    static std::string focused() {
        return QApplication::focusWidget() ? QApplication::focusWidget()->objectName().toStdString() : "nothing";
    }
    /// How it looks, to tell that nothing changed.
    QImage picture() { return view_->grab().toImage(); }

private:
    View* view_ = nullptr;
};

}  // namespace halvane::test
