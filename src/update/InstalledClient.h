#pragma once

#include <string>

namespace halvane::update {

/// The client that runs, and what it runs on: what an offered package is held against. A plain value.
struct InstalledClient {
    std::string package;
    std::string version;
    std::string architecture;
    std::string systemVersion;  ///< of the operating system, such as "12"; empty where it has none
};

}  // namespace halvane::update
