#include "util/Redaction.h"

#include "util/Log.h"
#include "util/Text.h"

#include <algorithm>
#include <array>

namespace halvane::util {

namespace {

/// Matched within the lower-case key, so that "ad_cert_password" and "Key_token" count too.
constexpr std::array<std::string_view, 10> kSecretWords{"password", "passwd",        "token",  "uninstall_num", "passphrase",
                                                        "secret",   "authorization", "cookie", "api_key",       "api-key"};

}  // namespace

bool isSecretKey(std::string_view key) {
    const std::string lower = lowercasedAscii(key);
    return std::ranges::any_of(kSecretWords, [&](std::string_view word) { return lower.find(word) != std::string::npos; });
}

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
            copy.set(key, isSecretKey(key) && !field.isNull() ? Value(kRedacted) : redacted(field));
        }
        return copy;
    }
    return value;
}

}  // namespace halvane::util
