#pragma once

#include <map>
#include <string>

namespace halvane::linux {

/// The NAME=value lines of os-release, machine-info and their like, the values as a shell would read
/// them. Comments, empty values and values that are not UTF-8 (they go into requests and on the
/// screen) count as missing; a later line wins.
std::map<std::string, std::string> assignments(const std::string& text);

}  // namespace halvane::linux
