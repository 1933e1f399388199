#pragma once

#include "util/Value.h"

#include <optional>
#include <string>

namespace halvane::platform {

/// The application's preferences of this user: values under names, kept in memory and written to
/// disk on `flush` and when the program ends. A damaged file reads as no preferences. Main thread.
class Preferences {
public:
    virtual ~Preferences() = default;
    [[nodiscard]] virtual std::optional<util::Value> get(const std::string& key) const = 0;
    virtual void set(const std::string& key, util::Value value) = 0;
    virtual void remove(const std::string& key) = 0;
    /// Writes what changed. Failure is logged and otherwise ignored; the values stay in memory.
    virtual void flush() = 0;

    /// Whether anything stands under `key`.
    [[nodiscard]] bool has(const std::string& key) const { return get(key).has_value(); }
    /// The boolean under `key`; false when there is none.
    [[nodiscard]] bool boolean(const std::string& key) const {
        const auto value = get(key);
        return util::booleanOf(value ? &*value : nullptr);
    }
    [[nodiscard]] std::optional<std::string> text(const std::string& key) const {
        const auto value = get(key);
        return value && value->text() != nullptr ? std::optional(*value->text()) : std::nullopt;
    }
};

}  // namespace halvane::platform
