#pragma once

#include <optional>
#include <string>

namespace halvane::util {

/// Where the session's message bus listens; absent without one. None is started: a program that
/// stores a password or shows an icon is no reason for that. Any thread.
std::optional<std::string> sessionBusAddress();

}  // namespace halvane::util
