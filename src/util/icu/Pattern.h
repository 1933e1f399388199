#pragma once

#include <memory>
#include <string_view>

namespace halvane::util {

/// A regular expression of ICU's syntax, made once and used often. Constant after construction: any thread, several at once.
class Pattern {
public:
    /// `pattern` in UTF-8. One that is no pattern is a fault of the program: throws std::invalid_argument.
    explicit Pattern(std::string_view pattern);
    ~Pattern();
    Pattern(const Pattern&) = delete;
    Pattern& operator=(const Pattern&) = delete;

    /// Whether it matches the whole text, from its first to its last character. A line feed at the end is such a character.
    ///
    /// The texts come from anywhere, and a text can be made to keep a pattern busy for ages. So a match is given up, and answers
    /// false, after some hundredths of a second, beside the time of reading the text; and when the ways back that it has to
    /// remember take more than 8 MB. A long text that would have matched may be lost by that. What is no UTF-8 is
    /// covered by no pattern.
    [[nodiscard]] bool covers(std::string_view text) const;

private:
    struct Compiled;
    std::unique_ptr<const Compiled> compiled_;
};

}  // namespace halvane::util
