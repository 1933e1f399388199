#include "util/icu/Pattern.h"

#include "util/Text.h"
#include "util/icu/Icu.h"

#include <unicode/regex.h>

#include <stdexcept>

namespace halvane::util {

namespace {
/// In ICU's ticks of 10,000 steps, each well below a millisecond. The memory for ways back has a limit of ICU's own.
constexpr std::int32_t kTimeLimit = 50;
}  // namespace

struct Pattern::Compiled {
    std::unique_ptr<icu::RegexPattern> pattern;
};

Pattern::Pattern(std::string_view pattern) {
    UErrorCode status = U_ZERO_ERROR;
    UParseError where;
    std::unique_ptr<icu::RegexPattern> compiled(icu::RegexPattern::compile(unicodeOf(pattern), where, status));
    if (U_FAILURE(status)) throw std::invalid_argument("no regular expression: " + std::string(pattern));
    compiled_ = std::make_unique<Compiled>(Compiled{std::move(compiled)});
}

Pattern::~Pattern() = default;

bool Pattern::covers(std::string_view text) const {
    if (!isValidUtf8(text)) return false;
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString unicode = unicodeOf(text);
    const std::unique_ptr<icu::RegexMatcher> matcher(compiled_->pattern->matcher(unicode, status));
    if (U_FAILURE(status)) return false;
    matcher->setTimeLimit(kTimeLimit, status);
    const bool matches = matcher->matches(status) != 0;
    return matches && U_SUCCESS(status);
}

}  // namespace halvane::util
