#include "util/Redaction.h"

#include "util/Log.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace halvane::util {

namespace {

/// Matched within the lower-case key, so that "ad_cert_password" and "Key_token" count too.
constexpr std::array<std::string_view, 4> kSecretWords{"password", "passwd", "token", "uninstall_num"};

bool isSecret(const std::string& key) {
    std::string lower = key;
    std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return std::ranges::any_of(kSecretWords, [&](std::string_view word) { return lower.find(word) != std::string::npos; });
}

}  // namespace

Value redacted(const Value& value) {
    if (value.data() != nullptr) return kRedacted;
    if (const auto* list = value.list()) {
        Value::List copy;
        copy.reserve(list->size());
        for (const Value& element : *list) copy.push_back(redacted(element));
        return copy;
    }
    if (const auto* dictionary = value.dictionary()) {
        Dictionary copy;
        for (const auto& [key, field] : *dictionary) {
            copy.set(key, isSecret(key) && !field.isNull() ? Value(kRedacted) : redacted(field));
        }
        return copy;
    }
    return value;
}

}  // namespace halvane::util
