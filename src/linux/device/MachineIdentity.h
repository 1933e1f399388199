#pragma once

#include <optional>
#include <string>

namespace halvane::linux {

/// What a firmware's own words are worth. Makers leave fields unfilled with texts of many kinds, the
/// same on thousands of machines: such a text must not identify one.

/// The text, trimmed; absent when it is empty or one of those fillers.
std::optional<std::string> filledIn(const std::optional<std::string>& firmwareText);
/// The UUID in upper case; absent when it is no UUID, all zeros, all ones, or one of the known fillers.
std::optional<std::string> filledInUuid(const std::optional<std::string>& firmwareText);

}  // namespace halvane::linux
