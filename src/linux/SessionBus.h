#pragma once

#include <optional>
#include <string>

namespace halvane::linux {

/// Where the session's message bus listens; absent without one. None is started: a program that
/// stores a password is no reason for that. Any thread.
std::optional<std::string> sessionBusAddress();

}  // namespace halvane::linux
