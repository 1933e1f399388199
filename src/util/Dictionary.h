#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace halvane::util {

class Value;

/// Text keys to values, in the order of insertion: what goes out in a request or into a file has
/// one order, the one its author wrote. Lookups walk the entries; our dictionaries are small.
class Dictionary {
public:
    struct Entry;  ///< `key` and `value`; defined in Value.h, which whoever walks entries includes

    Dictionary();
    Dictionary(std::initializer_list<std::pair<std::string, Value>> entries);  ///< a later equal key wins
    Dictionary(const Dictionary&);
    Dictionary(Dictionary&&) noexcept;
    Dictionary& operator=(const Dictionary&);
    Dictionary& operator=(Dictionary&&) noexcept;
    ~Dictionary();

    /// The value of `key`, or null. Valid until the dictionary changes.
    [[nodiscard]] const Value* find(std::string_view key) const;
    [[nodiscard]] Value* find(std::string_view key);

    /// Replaces in place, or appends.
    void set(std::string key, Value value);
    void remove(std::string_view key);

    [[nodiscard]] bool empty() const;
    [[nodiscard]] std::size_t size() const;
    [[nodiscard]] std::vector<Entry>::const_iterator begin() const;
    [[nodiscard]] std::vector<Entry>::const_iterator end() const;

    /// Equal when both hold the same keys with equal values, in any order.
    friend bool operator==(const Dictionary& left, const Dictionary& right);

private:
    std::vector<Entry> entries_;
};

}  // namespace halvane::util
