#pragma once

#include <cstdio>
#include <exception>
#include <filesystem>

namespace halvane::bench {

/// The main function of a bench that runs programs beside it: `run` gets the directory in which they stand, and
/// what it throws becomes a line of text and exit code 1.
inline int benchMain(const char* name, const char* self, int (*run)(const std::filesystem::path& directory)) {
    try {
        return run(std::filesystem::canonical(self).parent_path());
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s: %s\n", name, failure.what());
        return 1;
    }
}

}  // namespace halvane::bench
