#pragma once

#include <cstdlib>
#include <ctime>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace halvane::test {

/// Variables of the process's environment as a test wants them, and afterwards as they were.
class TestEnvironment {
public:
    using Values = std::map<std::string, std::string>;

    /// Of `names`, those in `wanted` have its value and the others are absent.
    TestEnvironment(const std::vector<std::string>& names, const Values& wanted) {
        for (const auto& name : names) {
            const char* value = std::getenv(name.c_str());
            before_[name] = value == nullptr ? std::nullopt : std::optional<std::string>(value);
            const auto found = wanted.find(name);
            set(name, found == wanted.end() ? std::nullopt : std::optional(found->second));
        }
    }
    ~TestEnvironment() {
        for (const auto& [name, value] : before_) set(name, value);
        tzset();  // the C library keeps the zone that it saw last
    }
    TestEnvironment(const TestEnvironment&) = delete;
    TestEnvironment& operator=(const TestEnvironment&) = delete;

private:
    static void set(const std::string& name, const std::optional<std::string>& value) {
        value ? ::setenv(name.c_str(), value->c_str(), 1) : ::unsetenv(name.c_str());
    }

    std::map<std::string, std::optional<std::string>> before_;
};

}  // namespace halvane::test
