#include "support/TemporaryHome.h"

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace halvane::test {

TemporaryHome::TemporaryHome() {
    std::string name = (std::filesystem::temp_directory_path() / "halvane-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("cannot make " + name);
    path_ = name;
    const std::pair<const char*, const char*> places[] = {
        {"HOME", "."}, {"XDG_DATA_HOME", "data"}, {"XDG_CONFIG_HOME", "config"}, {"XDG_CACHE_HOME", "cache"}, {"XDG_RUNTIME_DIR", "run"}};
    for (const auto& [variable, place] : places) {
        const auto directory = (path_ / place).lexically_normal();
        std::filesystem::create_directories(directory);
        std::filesystem::permissions(directory, std::filesystem::perms::owner_all);
        ::setenv(variable, directory.c_str(), 1);
    }
}

TemporaryHome::~TemporaryHome() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

}  // namespace halvane::test
