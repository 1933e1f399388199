#pragma once

#include "platform/FileStore.h"
#include "platform/Preferences.h"
#include "util/Log.h"

#include <filesystem>

namespace halvane::linux {

/// Preferences in one property list, read once, when this object is made. A damaged file is kept
/// beside itself as `<name>.damaged` (the first one; a later one is only logged) before anything new
/// is written. What another process writes meanwhile is not merged: the last flush stands.
/// Main thread. `files` and `log` outlive this object; destroying it flushes.
class PropertyListPreferences final : public platform::Preferences {
public:
    PropertyListPreferences(platform::FileStore& files, std::filesystem::path file, util::Log& log);
    ~PropertyListPreferences() override;
    PropertyListPreferences(const PropertyListPreferences&) = delete;
    PropertyListPreferences& operator=(const PropertyListPreferences&) = delete;

    [[nodiscard]] std::optional<util::Value> get(const std::string& key) const override;
    void set(const std::string& key, util::Value value) override;
    void remove(const std::string& key) override;
    void flush() override;

private:
    void load();
    void keepDamaged(const util::Bytes& bytes, const std::string& reason);

    platform::FileStore& files_;
    const std::filesystem::path file_;
    util::Log& log_;
    util::Dictionary values_;
    util::Dictionary written_;  ///< what the file holds
};

}  // namespace halvane::linux
