#include "util/Value.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <limits>

namespace halvane::util {

namespace {

/// Leading white space, a sign and digits; what follows does not matter. Out of range saturates.
std::int64_t leadingInteger(const std::string& text) {
    const auto start = text.find_first_not_of(" \t\n\r");
    if (start == std::string::npos) return 0;
    const char* first = text.data() + start;
    const char* last = text.data() + text.size();
    if (*first == '+') ++first;
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(first, last, number);
    if (error == std::errc::result_out_of_range) {
        return *first == '-' ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
    }
    return number;
}

std::int64_t truncated(double number) {
    constexpr double kLimit = 9.2e18;
    return std::isfinite(number) && std::abs(number) < kLimit ? static_cast<std::int64_t>(number) : 0;
}

/// Whole numbers without an exponent, as far as anybody writes them out.
std::string decimal(double number) {
    constexpr double kLongest = 1e21;
    const bool whole = std::abs(number) < kLongest && std::trunc(number) == number;
    return whole ? fmt::format("{:.0f}", number) : fmt::format("{}", number);
}

}  // namespace

const Bytes* Value::data() const {
    const auto* data = std::get_if<Data>(&state_);
    return data == nullptr ? nullptr : &data->bytes;
}

bool operator==(const Value& left, const Value& right) { return left.state_ == right.state_; }

std::optional<std::string> textOf(const Value* value) {
    if (value == nullptr) return std::nullopt;
    if (const auto* text = value->text()) return text->substr(0, text->find('\0'));
    if (const auto* integer = value->integer()) return std::to_string(*integer);
    if (const auto* real = value->real()) return decimal(*real);
    if (const auto* boolean = value->boolean()) return *boolean ? "1" : "0";
    return std::nullopt;
}

std::int64_t integerOf(const Value* value) {
    if (value == nullptr) return 0;
    if (const auto* text = value->text()) return leadingInteger(*text);
    if (const auto* integer = value->integer()) return *integer;
    if (const auto* real = value->real()) return truncated(*real);
    if (const auto* boolean = value->boolean()) return *boolean ? 1 : 0;
    return 0;
}

bool booleanOf(const Value* value) {
    if (value == nullptr) return false;
    if (const auto* boolean = value->boolean()) return *boolean;
    if (const auto* real = value->real()) return *real != 0;
    if (const auto* text = value->text()) {
        return !text->empty() && std::string_view("YyTt123456789").find(text->front()) != std::string_view::npos;
    }
    return integerOf(value) != 0;
}

const Value* member(const Value* parent, std::string_view key) {
    const Dictionary* dictionary = parent == nullptr ? nullptr : parent->dictionary();
    return dictionary == nullptr ? nullptr : dictionary->find(key);
}

std::string printed(const std::optional<std::string>& text) { return text.value_or("(null)"); }

}  // namespace halvane::util
