#include "linux/http/ResponseHead.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace halvane::linux_http {

namespace {

constexpr std::size_t kLargestHead = 256UL * 1024UL;
constexpr std::size_t kMostFields = 1000;  // each is looked for among those before it

std::string_view trimmedView(std::string_view text) {
    constexpr std::string_view kSpace = " \t\r\n";
    const auto first = text.find_first_not_of(kSpace);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

}  // namespace

void ResponseHead::reset() {
    response_ = {};
    bytes_ = 0;
    complete_ = false;
}

ResponseHead::Line ResponseHead::take(std::string_view line) {
    if (complete_) return Line::Taken;
    bytes_ += line.size();
    if (bytes_ > kLargestHead) return Line::Refused;
    if (line.starts_with("HTTP/")) return beginReply(line) ? Line::Taken : Line::Refused;
    if (!trimmedView(line).empty()) {
        takeField(line);
        return response_.headers.fields().size() > kMostFields ? Line::Refused : Line::Taken;
    }
    if (response_.status < 200 && response_.status != 101) return Line::Taken;
    complete_ = true;
    return Line::Completed;
}

bool ResponseHead::beginReply(std::string_view statusLine) {
    response_ = {};
    const auto space = statusLine.find(' ');
    if (space == std::string_view::npos) return false;
    const std::string_view rest = trimmedView(statusLine.substr(space));
    const auto [end, failure] = std::from_chars(rest.data(), rest.data() + std::min<std::size_t>(rest.size(), 3), response_.status);
    return failure == std::errc() && response_.status >= 100;
}

void ResponseHead::takeField(std::string_view line) {
    const auto colon = line.find(':');
    if (colon == std::string_view::npos || colon == 0 || std::isspace(static_cast<unsigned char>(line.front())) != 0) return;
    response_.headers.append(trimmedView(line.substr(0, colon)), trimmedView(line.substr(colon + 1)));
}

}  // namespace halvane::linux_http
