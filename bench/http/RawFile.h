#pragma once

#include <sys/types.h>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>

namespace halvane::bench {

/// A file as the system has it, without a buffer that some contestants would have and others not.
class RawFile {
public:
    enum class Use : std::uint8_t { Read, Write };

    /// Throws std::system_error.
    RawFile(const std::filesystem::path& path, Use use);
    ~RawFile();
    RawFile(const RawFile&) = delete;
    RawFile& operator=(const RawFile&) = delete;

    [[nodiscard]] std::uint64_t size() const;
    /// 0 at the end, absent when reading fails.
    std::optional<std::size_t> read(char* buffer, std::size_t capacity);
    bool write(const char* data, std::size_t size);
    void seek(std::uint64_t position) { position_ = static_cast<off_t>(position); }

private:
    int descriptor_;
    off_t position_ = 0;
};

}  // namespace halvane::bench
