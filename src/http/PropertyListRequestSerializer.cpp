#include "http/PropertyListRequestSerializer.h"

#include "util/PropertyList.h"

#include <algorithm>

namespace halvane::http {

namespace {

bool holdsNull(const util::Value& value) {
    if (const auto* list = value.list()) return std::ranges::any_of(*list, holdsNull);
    const auto* members = value.dictionary();
    return members == nullptr ? value.isNull() : std::ranges::any_of(*members, [](const auto& member) { return holdsNull(member.value); });
}

}  // namespace

util::Result<void> PropertyListRequestSerializer::encode(const std::optional<util::Dictionary>& parameters,
                                                         platform::HttpRequest& request) const {
    if (!parameters) return {};
    if (holdsNull(*parameters)) return util::dataError("a property list cannot hold null");
    setContentTypeWhereNoneIs(request, "application/x-plist");
    request.body = util::PropertyList::encode(*parameters);
    return {};
}

}  // namespace halvane::http
