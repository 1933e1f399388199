#pragma once

#include "RawFile.h"
#include "platform/HttpMessage.h"

#include <filesystem>

namespace halvane::bench {

/// A file as the body of a request of ours.
class FileBody final : public platform::HttpBodyStream {
public:
    explicit FileBody(const std::filesystem::path& path) : file_(path, RawFile::Use::Read) {}

    [[nodiscard]] std::optional<std::uint64_t> length() const override { return file_.size(); }
    std::optional<std::size_t> read(char* buffer, std::size_t capacity) override { return file_.read(buffer, capacity); }
    bool rewind() override {
        file_.seek(0);
        return true;
    }

private:
    RawFile file_;
};

}  // namespace halvane::bench
