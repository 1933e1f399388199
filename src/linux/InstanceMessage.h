#pragma once

#include "util/Bytes.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace halvane::linux {

/// The arguments that a later start hands to the first: the body's length in four bytes, then for
/// each argument its length in four bytes and its own. Lengths begin with their highest byte.
struct InstanceMessage {
    static constexpr std::size_t kHeaderSize = 4;
    static constexpr std::size_t kLargestBody = std::size_t{64} << 10;
    /// What the first answers once it has taken them over.
    static constexpr char kTaken = 'k';

    /// Absent when they are too many or too long.
    static std::optional<util::Bytes> encode(const std::vector<std::string>& arguments);
    /// The length of the body that follows `header`; absent when it is too large.
    static std::optional<std::size_t> bodySize(std::string_view header);
    /// Absent when the lengths do not add up.
    static std::optional<std::vector<std::string>> decode(std::string_view body);
};

}  // namespace halvane::linux
