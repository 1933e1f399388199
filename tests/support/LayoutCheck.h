#pragma once

#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/PushButton.h"

#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QWidget>
#include <string>
#include <vector>

namespace halvane::test {

/// Whether everything that is shown below a view has room: nothing stands outside its parent, no two controls
/// or texts lie upon each other, no line is lower than its letters. Answers what is wrong.
class LayoutCheck {
public:
    static std::vector<std::string> problemsOf(const QWidget& view) {
        std::vector<std::string> problems;
        check(view, problems);
        return problems;
    }

    /// Half as much text again in every label and button below the view; each once.
    static void lengthenTexts(QWidget& view) {
        const auto longer = [](const QString& text) { return text + text.left((text.size() + 1) / 2); };
        for (auto* widget : view.findChildren<QWidget*>()) {
            if (widget->property("lengthened").toBool()) continue;
            widget->setProperty("lengthened", true);
            if (auto* label = dynamic_cast<ui::ElidedLabel*>(widget)) {
                label->setWholeText(longer(label->text()));
            } else if (auto* button = qobject_cast<QPushButton*>(widget)) {
                button->setText(longer(button->text()));
            }
        }
    }

private:
    static std::string nameOf(const QWidget& widget) {
        const QString name = widget.objectName().isEmpty() ? widget.accessibleName() : widget.objectName();
        return name.isEmpty() ? "?" : name.toStdString();
    }
    /// What a person sees of it, without the margin for the focus ring.
    static QRect visibleGeometry(const QWidget& widget) {
        if (const auto* button = dynamic_cast<const ui::PushButton*>(&widget)) return button->visibleRect().translated(widget.pos());
        return widget.geometry();
    }
    static bool holdsSomething(const QWidget& widget) {
        if (const auto* label = qobject_cast<const QLabel*>(&widget)) return !label->text().isEmpty();
        return qobject_cast<const QAbstractButton*>(&widget) || qobject_cast<const QLineEdit*>(&widget) ||
               qobject_cast<const QScrollArea*>(&widget);
    }
    static void check(const QWidget& view, std::vector<std::string>& problems) {
        const bool scrolls = qobject_cast<const QScrollArea*>(&view) != nullptr;
        std::vector<const QWidget*> seen;
        for (const auto* child : view.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
            if (child->isHidden() || child->isWindow()) continue;
            const bool scrolled = scrolls || qobject_cast<const QScrollArea*>(view.parentWidget()) != nullptr;
            if (!scrolled && !view.rect().contains(visibleGeometry(*child)))
                problems.push_back(nameOf(*child) + " stands outside " + nameOf(view));
            if (holdsSomething(*child)) {
                if (child->height() < child->fontMetrics().ascent() + child->fontMetrics().descent() &&
                    !qobject_cast<const QScrollArea*>(child))
                    problems.push_back(nameOf(*child) + " is lower than its letters");
                for (const auto* other : seen)
                    if (visibleGeometry(*child).intersects(visibleGeometry(*other)))
                        problems.push_back(nameOf(*child) + " lies upon " + nameOf(*other));
                seen.push_back(child);
            }
            check(*child, problems);
        }
    }
};

}  // namespace halvane::test
