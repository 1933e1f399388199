#pragma once

#include "util/Bytes.h"
#include "util/Dictionary.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace halvane::util {

/// What a JSON reply, a property list, a preference or a keyed archive holds: null, a boolean, a
/// number, text (UTF-8), bytes, a date, a list or a dictionary. A plain value; copies are independent.
///
/// The readers below answer "absent" (null pointer, nullopt) for a value of another kind, so that
/// nothing a server or a file says can do more than be absent.
class Value {
public:
    struct Null {
        friend bool operator==(const Null&, const Null&) = default;
    };
    struct Data {
        Bytes bytes;
        friend bool operator==(const Data&, const Data&) = default;
    };
    struct Date {
        std::int64_t seconds = 0;  ///< since 1970, UTC
        friend bool operator==(const Date&, const Date&) = default;
    };
    using List = std::vector<Value>;

    Value() = default;
    Value(std::nullptr_t) {}
    Value(bool value) : state_(value) {}
    Value(int value) : state_(static_cast<std::int64_t>(value)) {}
    Value(std::int64_t value) : state_(value) {}
    Value(double value) : state_(value) {}
    Value(const char* text) : state_(std::string(text)) {}
    Value(std::string text) : state_(std::move(text)) {}
    Value(Data data) : state_(std::move(data)) {}
    Value(Date date) : state_(date) {}
    Value(List list) : state_(std::move(list)) {}
    Value(Dictionary dictionary) : state_(std::move(dictionary)) {}
    /// An absent text becomes null.
    Value(std::optional<std::string> text) {
        if (text) state_ = std::move(*text);
    }

    [[nodiscard]] bool isNull() const { return std::holds_alternative<Null>(state_); }
    [[nodiscard]] const bool* boolean() const { return std::get_if<bool>(&state_); }
    [[nodiscard]] const std::int64_t* integer() const { return std::get_if<std::int64_t>(&state_); }
    [[nodiscard]] const double* real() const { return std::get_if<double>(&state_); }
    [[nodiscard]] const std::string* text() const { return std::get_if<std::string>(&state_); }
    [[nodiscard]] const Bytes* data() const;
    [[nodiscard]] const Date* date() const { return std::get_if<Date>(&state_); }
    [[nodiscard]] const List* list() const { return std::get_if<List>(&state_); }
    [[nodiscard]] List* list() { return std::get_if<List>(&state_); }
    [[nodiscard]] const Dictionary* dictionary() const { return std::get_if<Dictionary>(&state_); }
    [[nodiscard]] Dictionary* dictionary() { return std::get_if<Dictionary>(&state_); }

    friend bool operator==(const Value& left, const Value& right);

private:
    std::variant<Null, bool, std::int64_t, double, std::string, Data, Date, List, Dictionary> state_;
};

struct Dictionary::Entry {
    std::string key;
    Value value;
};

/// The text of a record's field: text up to its first NUL, a number as decimal text, a boolean as "1" or "0";
/// absent for null, bytes, dates, lists, dictionaries and for no value at all.
std::optional<std::string> textOf(const Value* value);

/// The integer of a field such as a reply's "code": a number (fractions cut off), or the leading
/// integer of a text; 0 for everything else.
std::int64_t integerOf(const Value* value);

/// True for the boolean true and for numbers other than 0; a text counts when it begins with Y, y,
/// T, t or a digit 1-9. Anything else, and no value, is false.
bool booleanOf(const Value* value);

/// `parent[key]` when `parent` is a dictionary that has it, else null.
const Value* member(const Value* parent, std::string_view key);

/// How an absent text appears inside a formatted line.
std::string printed(const std::optional<std::string>& text);

}  // namespace halvane::util
