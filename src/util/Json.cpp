#include "util/Json.h"

#include "util/Base64.h"

#include <fmt/chrono.h>
#include <nlohmann/json.hpp>

#include <limits>

namespace halvane::util {

namespace {

constexpr std::size_t kMaxDepth = 512;

/// Builds our values as the parser walks, so that no second tree stands in memory.
class Builder : public nlohmann::json_sax<nlohmann::json> {
public:
    Value result;
    std::string problem;

    bool null() override { return add(Value()); }
    bool boolean(bool value) override { return add(value); }
    bool number_integer(number_integer_t value) override { return add(static_cast<std::int64_t>(value)); }
    bool number_unsigned(number_unsigned_t value) override {
        constexpr auto kLargest = static_cast<number_unsigned_t>(std::numeric_limits<std::int64_t>::max());
        return value <= kLargest ? add(static_cast<std::int64_t>(value)) : add(static_cast<double>(value));
    }
    bool number_float(number_float_t value, const string_t& /*text*/) override { return add(value); }
    bool string(string_t& value) override { return add(std::move(value)); }
    bool binary(binary_t& /*value*/) override { return false; }
    bool start_object(std::size_t /*elements*/) override { return open(Dictionary()); }
    bool start_array(std::size_t /*elements*/) override { return open(Value::List()); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }
    bool key(string_t& name) override {
        open_.back().key = std::move(name);
        return true;
    }
    bool parse_error(std::size_t position, const std::string& /*token*/, const nlohmann::detail::exception& /*error*/) override {
        problem = "not JSON, at byte " + std::to_string(position);
        return false;
    }

private:
    struct Open {
        Value container;
        std::string key;
    };
    std::vector<Open> open_;

    bool open(Value container) {
        if (open_.size() == kMaxDepth) {
            problem = "JSON nested deeper than " + std::to_string(kMaxDepth);
            return false;
        }
        open_.push_back({std::move(container), {}});
        return true;
    }
    bool close() {
        Value closed = std::move(open_.back().container);
        open_.pop_back();
        return add(std::move(closed));
    }
    bool add(Value value) {
        if (open_.empty()) {
            result = std::move(value);
        } else if (auto* list = open_.back().container.list()) {
            list->push_back(std::move(value));
        } else {
            open_.back().container.dictionary()->set(std::move(open_.back().key), std::move(value));
        }
        return true;
    }
};

nlohmann::ordered_json toLibrary(const Value& value) {
    if (const auto* boolean = value.boolean()) return *boolean;
    if (const auto* integer = value.integer()) return *integer;
    if (const auto* real = value.real()) return *real;
    if (const auto* text = value.text()) return *text;
    if (const auto* data = value.data()) return Base64::encode(*data);
    if (const auto* date = value.date()) {
        const auto text = Json::dateText(*date);
        return text ? nlohmann::ordered_json(*text) : nlohmann::ordered_json();
    }
    if (const auto* list = value.list()) {
        auto array = nlohmann::ordered_json::array();
        for (const Value& element : *list) array.push_back(toLibrary(element));
        return array;
    }
    if (const auto* dictionary = value.dictionary()) {
        auto object = nlohmann::ordered_json::object();
        for (const auto& [key, field] : *dictionary) object[key] = toLibrary(field);
        return object;
    }
    return nullptr;
}

}  // namespace

std::optional<std::string> Json::dateText(const Value::Date& date) {
    constexpr std::int64_t kEndOfYears = 253'402'300'800;  // 10000-01-01; a calendar goes no further
    if (date.seconds < -kEndOfYears || date.seconds >= kEndOfYears) return std::nullopt;
    return fmt::format("{:%FT%TZ}", fmt::gmtime(static_cast<std::time_t>(date.seconds)));
}

Result<Value> Json::decode(const Bytes& bytes) {
    // The library takes a NUL for the end of its input.
    if (bytes.find('\0') != Bytes::npos) return dataError("not JSON, a NUL byte");
    Builder builder;
    if (!nlohmann::json::sax_parse(bytes, &builder)) return dataError(builder.problem);
    return std::move(builder.result);
}

Bytes Json::encode(const Value& value) { return toLibrary(value).dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace); }

}  // namespace halvane::util
