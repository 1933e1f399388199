#pragma once

#include <filesystem>
#include <string>

namespace halvane::app {

/// Where the program stands and in what surroundings it was started.
struct Surroundings {
    std::filesystem::path program;    ///< the file that runs, as it was called when it was started
    std::filesystem::path toolRoot;   ///< HALVANE_TOOL_ROOT, else libexec/halvane beside the program's directory
    std::filesystem::path resources;  ///< HALVANE_RESOURCES, else share/halvane beside the program's directory
    std::string server;               ///< HALVANE_SERVER, unchecked; empty when it is not set
    std::string language;             ///< of the desktop, such as "zh-CN"

    static Surroundings ofThisProcess();
};

}  // namespace halvane::app
