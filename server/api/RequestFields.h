#pragma once

#include "server/api/Message.h"
#include "util/Value.h"

#include <optional>
#include <string>
#include <string_view>

namespace halvane::server {

/// The text fields of a request's JSON body. Read all, then ask once whether there was a problem: the
/// first one is kept, and whoever sees it must not use what was read.
class RequestFields {
public:
    /// Longer texts are nobody's name, password or host.
    static constexpr std::size_t kLongestText = 1024;

    explicit RequestFields(const ApiRequest& request);

    /// A field that must be there.
    std::string text(std::string_view name);
    /// A field that may be left out: empty then.
    std::string optionalText(std::string_view name);
    /// What is wrong with the request, in English; never repeats a value.
    [[nodiscard]] const std::optional<std::string>& problem() const { return problem_; }

private:
    enum class Presence { Required, Optional };
    std::string read(std::string_view name, Presence presence);
    void note(std::string problem);

    util::Value body_;
    std::optional<std::string> problem_;
};

}  // namespace halvane::server
