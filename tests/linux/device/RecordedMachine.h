#pragma once

#include "linux/device/SystemFiles.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace halvane::test {

/// The texts that one machine's kernel, firmware and distribution tell, written below a directory that
/// goes with the object. Starts empty: a machine that tells nothing.
class RecordedMachine {
public:
    using Files = std::vector<std::pair<std::string, std::string>>;

    RecordedMachine() : root_(std::filesystem::temp_directory_path() / unique()) { std::filesystem::create_directories(root_); }
    explicit RecordedMachine(const Files& files) : RecordedMachine() {
        for (const auto& [path, text] : files) put(path, text);
    }
    RecordedMachine(std::initializer_list<Files::value_type> files) : RecordedMachine(Files(files)) {}
    ~RecordedMachine() {
        std::error_code ignored;
        std::filesystem::remove_all(root_, ignored);
    }
    RecordedMachine(const RecordedMachine&) = delete;
    RecordedMachine& operator=(const RecordedMachine&) = delete;

    void put(const std::string& path, const std::string& text) {
        std::filesystem::create_directories((root_ / path).parent_path());
        std::ofstream(root_ / path, std::ios::binary) << text;
    }
    /// What /sys tells of a network interface; a virtual one has no device.
    void interface(const std::string& name, unsigned index, const std::string& address, bool hasDevice, unsigned type = 1) {
        const std::string directory = "sys/class/net/" + name;
        put(directory + "/ifindex", std::to_string(index) + "\n");
        put(directory + "/address", address + "\n");
        put(directory + "/addr_len", "6\n");
        put(directory + "/type", std::to_string(type) + "\n");
        if (hasDevice) put(directory + "/device/vendor", "0x8086\n");
    }
    [[nodiscard]] linux::SystemFiles files() const { return linux::SystemFiles(root_); }

private:
    static std::string unique() {
        static int made = 0;
        return "halvane-machine-" + std::to_string(::getpid()) + "-" + std::to_string(made++);
    }

    std::filesystem::path root_;
};

}  // namespace halvane::test
