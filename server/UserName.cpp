#include "server/UserName.h"

#include "util/Text.h"

#include <algorithm>

namespace halvane::server {

namespace {

/// The standard's limit for a common name.
constexpr std::size_t kLongestLocal = 64;
constexpr std::size_t kLongestDomain = 190;

bool isWord(std::string_view text, std::size_t longest) {
    return !text.empty() && text.size() <= longest && text.front() != '.' && text.front() != '-' &&
           text.find("..") == std::string_view::npos && std::all_of(text.begin(), text.end(), [](char c) {
               return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.' || c == '_' || c == '-';
           });
}

}  // namespace

std::optional<UserName> UserName::parse(std::string_view text) {
    const std::string lower = util::lowercasedAscii(text);
    const auto at = lower.find('@');
    if (at == std::string::npos) return std::nullopt;
    if (!isWord(std::string_view(lower).substr(0, at), kLongestLocal) || !isWord(std::string_view(lower).substr(at + 1), kLongestDomain)) {
        return std::nullopt;
    }
    return UserName{lower, lower.substr(0, at)};
}

}  // namespace halvane::server
