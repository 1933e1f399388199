#include "util/Dictionary.h"

#include "util/Value.h"

#include <algorithm>

namespace halvane::util {

Dictionary::Dictionary() = default;
Dictionary::Dictionary(const Dictionary&) = default;
Dictionary::Dictionary(Dictionary&&) noexcept = default;
Dictionary& Dictionary::operator=(const Dictionary&) = default;
Dictionary& Dictionary::operator=(Dictionary&&) noexcept = default;
Dictionary::~Dictionary() = default;

Dictionary::Dictionary(std::initializer_list<std::pair<std::string, Value>> entries) {
    entries_.reserve(entries.size());
    for (const auto& [key, value] : entries) set(key, value);
}

const Value* Dictionary::find(std::string_view key) const {
    const auto found = std::ranges::find(entries_, key, &Entry::key);
    return found == entries_.end() ? nullptr : &found->value;
}

Value* Dictionary::find(std::string_view key) { return const_cast<Value*>(std::as_const(*this).find(key)); }

void Dictionary::set(std::string key, Value value) {
    if (Value* existing = find(key)) {
        *existing = std::move(value);
    } else {
        entries_.push_back({std::move(key), std::move(value)});
    }
}

void Dictionary::remove(std::string_view key) {
    std::erase_if(entries_, [key](const Entry& entry) { return entry.key == key; });
}

bool Dictionary::empty() const { return entries_.empty(); }
std::size_t Dictionary::size() const { return entries_.size(); }
std::vector<Dictionary::Entry>::const_iterator Dictionary::begin() const { return entries_.begin(); }
std::vector<Dictionary::Entry>::const_iterator Dictionary::end() const { return entries_.end(); }

bool operator==(const Dictionary& left, const Dictionary& right) {
    return left.size() == right.size() && std::ranges::all_of(left, [&](const Dictionary::Entry& entry) {
               const Value* other = right.find(entry.key);
               return other != nullptr && *other == entry.value;
           });
}

}  // namespace halvane::util
