#include "http/PropertyListRequestSerializer.h"

#include "util/PropertyList.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <string>

namespace halvane::http {

namespace {

/// Text and keys end at a NUL in the library's hands, and other controls are not XML.
bool isWritable(const std::string& text) {
    return std::ranges::none_of(text, [](unsigned char c) { return c < ' ' && c != '\t' && c != '\n' && c != '\r'; });
}

bool isWritable(const util::Value& value) {
    // Dates are 32 bits of seconds around 2001.
    constexpr std::int64_t kMiddle = 978'307'200;
    if (value.isNull()) return false;
    if (const auto* text = value.text()) return isWritable(*text);
    if (const auto* date = value.date()) return std::abs(date->seconds - kMiddle) <= std::numeric_limits<std::int32_t>::max();
    if (const auto* list = value.list()) return std::ranges::all_of(*list, [](const util::Value& element) { return isWritable(element); });
    const auto* members = value.dictionary();
    return members == nullptr ||
           std::ranges::all_of(*members, [](const auto& member) { return isWritable(member.key) && isWritable(member.value); });
}

}  // namespace

util::Result<void> PropertyListRequestSerializer::encode(const std::optional<util::Dictionary>& parameters,
                                                         platform::HttpRequest& request) const {
    if (!parameters) return {};
    if (!isWritable(util::Value(*parameters)))
        return util::dataError("a parameter is null, a date far away or text with controls, which a property list cannot hold");
    setContentTypeWhereNoneIs(request, "application/x-plist");
    request.body = util::PropertyList::encode(*parameters);
    return {};
}

}  // namespace halvane::http
