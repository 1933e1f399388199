#include "linux/device/LinuxSystemVersion.h"

#include "util/Text.h"

#include <map>

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

std::map<std::string, std::string> assignments(const std::string& text) {
    std::map<std::string, std::string> values;
    for (const auto& raw : util::split(text, '\n')) {
        const std::string line = util::trimmed(raw);
        const auto equals = line.find('=');
        if (line.starts_with('#') || equals == std::string::npos) continue;
        // Texts of the distribution go into requests and on the screen: broken ones count as missing.
        if (const auto value = util::trimmed(unquoted(line.substr(equals + 1))); !value.empty() && util::isValidUtf8(value))
            values[line.substr(0, equals)] = value;
    }
    return values;
}

}  // namespace

util::Dictionary LinuxSystemVersion::propertyList() const {
    auto text = files_.text("etc/os-release");
    if (!text) text = files_.text("usr/lib/os-release");
    util::Dictionary list;
    if (!text) return list;

    const auto values = assignments(*text);
    const auto name = values.find("NAME");
    list.set("ProductName", name == values.end() ? "Linux" : name->second);
    for (const char* key : {"VERSION_ID", "BUILD_ID", "VERSION_CODENAME", "VERSION"}) {
        if (const auto version = values.find(key); version != values.end()) {
            list.set("ProductVersion", version->second);
            break;
        }
    }
    return list;
}

}  // namespace halvane::linux
