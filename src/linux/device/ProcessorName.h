#pragma once

#include <optional>
#include <string>

namespace halvane::linux {

/// What the processors of a machine are called, from the text of /proc/cpuinfo. x86 says it outright;
/// ARM gives numbers of maker and design, for which we know the usual names ("ARM Cortex-A76"; several
/// kinds of core are joined by " + "); other architectures have a line of their own. Absent when none of it is there.
std::optional<std::string> processorName(const std::string& cpuInfo);

}  // namespace halvane::linux
