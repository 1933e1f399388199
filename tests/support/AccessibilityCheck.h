#pragma once

#include <QAccessible>
#include <QObject>
#include <QWidget>
#include <set>
#include <string>
#include <vector>

namespace halvane::test {

/// What a screen reader finds below a widget that is shown.
class AccessibilityCheck {
public:
    explicit AccessibilityCheck(QWidget& root) { walk(QAccessible::queryAccessibleInterface(&root)); }

    /// Each control as "role: name", in the order of the tree.
    [[nodiscard]] const std::vector<std::string>& controls() const { return controls_; }
    /// The controls without a name, by their objects' names.
    [[nodiscard]] const std::vector<std::string>& unnamed() const { return unnamed_; }
    /// Names that two controls of one role share, so that nobody could tell them apart.
    [[nodiscard]] std::vector<std::string> ambiguous() const {
        std::set<std::string> seen;
        std::vector<std::string> twice;
        for (const auto& control : controls_)
            if (!seen.insert(control).second) twice.push_back(control);
        return twice;
    }

private:
    static const char* roleOf(QAccessible::Role role) {
        switch (role) {
            case QAccessible::Button:
                return "button";
            case QAccessible::CheckBox:
                return "check box";
            case QAccessible::RadioButton:
                return "radio button";
            case QAccessible::EditableText:
                return "field";
            case QAccessible::List:
                return "list";
            case QAccessible::ListItem:
                return "row";
            case QAccessible::MenuItem:
                return "menu item";
            case QAccessible::Graphic:
                return "picture";
            default:
                return nullptr;
        }
    }

    void walk(QAccessibleInterface* item) {
        if (!item || item->state().invisible) return;
        if (const char* role = roleOf(item->role())) {
            const std::string name = item->text(QAccessible::Name).trimmed().toStdString();
            if (name.empty()) unnamed_.push_back(std::string(role) + " " + item->object()->objectName().toStdString());
            controls_.push_back(std::string(role) + ": " + name);
        }
        for (int i = 0; i < item->childCount(); ++i) walk(item->child(i));
    }

    std::vector<std::string> controls_;
    std::vector<std::string> unnamed_;
};

}  // namespace halvane::test
