#include "linux/PropertyListPreferences.h"

#include "util/PropertyList.h"

#include <cerrno>
#include <utility>

namespace halvane::linux {

PropertyListPreferences::PropertyListPreferences(platform::FileStore& files, std::filesystem::path file, util::Log& log)
    : files_(files), file_(std::move(file)), log_(log) {
    load();
}

PropertyListPreferences::~PropertyListPreferences() { flush(); }

void PropertyListPreferences::load() {
    const auto bytes = files_.read(file_);
    if (!bytes) {
        if (bytes.error().code != ENOENT) log_.write("preferences: starting without any: " + bytes.error().description);
        return;
    }
    const auto decoded = util::PropertyList::decode(*bytes);
    if (!decoded) {
        keepDamaged(*bytes, decoded.error().description);
    } else if (const auto* dictionary = decoded->dictionary()) {
        values_ = written_ = *dictionary;
    } else {
        keepDamaged(*bytes, "not a dictionary");
    }
}

void PropertyListPreferences::keepDamaged(const util::Bytes& bytes, const std::string& reason) {
    const std::filesystem::path kept = file_.string() + ".damaged";
    std::string line = "preferences: " + file_.string() + " is damaged (" + reason + "), starting without any";
    if (files_.exists(kept)) {
        line += "; " + kept.string() + " is of an earlier time and stays";
    } else if (const auto written = files_.write(kept, bytes); written) {
        line += "; the damaged file is kept as " + kept.string();
    } else {
        line += "; it could not be kept: " + written.error().description;
    }
    log_.write(line);
}

std::optional<util::Value> PropertyListPreferences::get(const std::string& key) const {
    const auto* value = values_.find(key);
    return value == nullptr ? std::nullopt : std::optional(*value);
}

void PropertyListPreferences::set(const std::string& key, util::Value value) {
    // A property list holds no null; in memory and after a restart the answer must be the same.
    if (value.isNull()) {
        remove(key);
    } else {
        values_.set(key, std::move(value));
    }
}

void PropertyListPreferences::remove(const std::string& key) { values_.remove(key); }

void PropertyListPreferences::flush() {
    if (values_ == written_) return;
    auto outcome = files_.makeDirectory(file_.parent_path());
    if (outcome) outcome = files_.write(file_, util::PropertyList::encode(values_));
    if (outcome) {
        written_ = values_;
    } else {
        log_.write("preferences: not saved: " + outcome.error().description);
    }
}

}  // namespace halvane::linux
