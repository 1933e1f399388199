#pragma once

#include "platform/Preferences.h"

namespace halvane::test {

/// Preferences that tell what a restart would find: `saved` is what the last flush wrote.
class MemoryPreferences final : public platform::Preferences {
public:
    std::optional<util::Value> get(const std::string& key) const override {
        const auto* value = values.find(key);
        return value == nullptr ? std::nullopt : std::optional(*value);
    }
    void set(const std::string& key, util::Value value) override {
        if (value.isNull()) return values.remove(key);
        values.set(key, std::move(value));
    }
    void remove(const std::string& key) override { values.remove(key); }
    void flush() override {
        saved = values;
        ++flushes;
    }

    util::Dictionary values;
    util::Dictionary saved;
    int flushes = 0;
};

}  // namespace halvane::test
