#include "linux/device/Assignments.h"

#include "util/Text.h"

#include <string_view>

namespace halvane::linux {

namespace {

/// A value as a shell would read it: quoted by either quote, backslashes escaping outside single ones.
std::string unquoted(std::string_view text) {
    std::string value;
    char quote = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\\' && quote != '\'' && i + 1 < text.size()) {
            value.push_back(text[++i]);
        } else if (quote == 0 && (c == '"' || c == '\'')) {
            quote = c;
        } else if (c == quote && quote != 0) {
            quote = 0;
        } else {
            value.push_back(c);
        }
    }
    return value;
}

}  // namespace

std::map<std::string, std::string> assignments(const std::string& text) {
    std::map<std::string, std::string> values;
    for (const auto& raw : util::split(text, '\n')) {
        const std::string line = util::trimmed(raw);
        const auto equals = line.find('=');
        if (line.starts_with('#') || equals == std::string::npos) continue;
        if (const auto value = util::trimmed(unquoted(line.substr(equals + 1))); !value.empty() && util::isValidUtf8(value))
            values[line.substr(0, equals)] = value;
    }
    return values;
}

}  // namespace halvane::linux
