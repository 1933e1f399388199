#include "server/commands/Arguments.h"

#include <algorithm>

namespace halvane::server {

util::Result<Arguments> Arguments::parse(const std::vector<std::string>& words, const std::vector<std::string>& options) {
    Arguments parsed;
    bool onlyWords = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (onlyWords || !word.starts_with("--")) {
            parsed.words_.push_back(word);
            continue;
        }
        if (word == "--") {
            onlyWords = true;
            continue;
        }
        const auto equals = word.find('=');
        const std::string name = word.substr(0, equals);
        if (std::find(options.begin(), options.end(), name) == options.end()) return util::dataError("unknown option " + name);
        if (equals == std::string::npos && i + 1 == words.size()) return util::dataError("option " + name + " needs a value");
        const std::string value = equals == std::string::npos ? words[++i] : word.substr(equals + 1);
        if (!parsed.options_.emplace(name, value).second) return util::dataError("option " + name + " is given twice");
    }
    return parsed;
}

std::optional<std::string> Arguments::option(const std::string& name) const {
    const auto found = options_.find(name);
    if (found == options_.end()) return std::nullopt;
    return found->second;
}

}  // namespace halvane::server
