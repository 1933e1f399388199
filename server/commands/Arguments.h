#pragma once

#include "util/Result.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace halvane::server {

/// The words of a command line: "--name value", "--name=value" and what is neither. Any order; after
/// "--" nothing is an option.
class Arguments {
public:
    /// Error: an option that `options` does not list, one without its value, or one given twice.
    static util::Result<Arguments> parse(const std::vector<std::string>& words, const std::vector<std::string>& options);

    [[nodiscard]] const std::vector<std::string>& words() const { return words_; }
    [[nodiscard]] std::optional<std::string> option(const std::string& name) const;
    [[nodiscard]] std::string option(const std::string& name, const std::string& otherwise) const {
        return option(name).value_or(otherwise);
    }

private:
    std::vector<std::string> words_;
    std::map<std::string, std::string> options_;
};

}  // namespace halvane::server
