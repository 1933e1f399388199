#include "systools/system_profiler/SystemProfilerTool.h"

#include <filesystem>

int main(int argc, char** argv) {
    using namespace halvane;
    const systools::SystemProfilerTool tool([]() -> std::optional<std::uint64_t> {
        std::error_code error;
        const auto space = std::filesystem::space("/", error);
        return error ? std::nullopt : std::optional<std::uint64_t>(space.capacity);
    });
    return systools::runTool("system_profiler", systools::argumentsOf(argc, argv),
                             std::bind_front(&systools::SystemProfilerTool::run, &tool));
}
