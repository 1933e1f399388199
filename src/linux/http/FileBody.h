#pragma once

#include "platform/HttpMessage.h"
#include "util/Result.h"

#include <sys/types.h>

#include <filesystem>
#include <memory>

namespace halvane::linux_http {

/// A request's body in a file. Open only while it is sent: thousands of requests may wait with theirs.
/// Reading fails when the file has gone or has become shorter in the meantime; what was added is not sent.
class FileBody final : public platform::HttpBodyStream {
public:
    static util::Result<std::shared_ptr<platform::HttpBodyStream>> of(const std::filesystem::path& file);

    FileBody(std::filesystem::path file, std::uint64_t length) : file_(std::move(file)), length_(length) {}
    ~FileBody() override;
    FileBody(const FileBody&) = delete;
    FileBody& operator=(const FileBody&) = delete;

    [[nodiscard]] std::optional<std::uint64_t> length() const override { return length_; }
    std::optional<std::size_t> read(char* buffer, std::size_t capacity) override;
    bool rewind() override;

private:
    void close();

    const std::filesystem::path file_;
    const std::uint64_t length_;
    std::uint64_t position_ = 0;
    int descriptor_ = -1;
};

}  // namespace halvane::linux_http
