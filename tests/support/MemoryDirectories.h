#pragma once

#include "platform/Directories.h"

namespace halvane::test {

/// Directories under one root that need not exist.
class MemoryDirectories final : public platform::Directories {
public:
    explicit MemoryDirectories(std::filesystem::path root = "/home/test") : root_(std::move(root)) {}
    std::filesystem::path documents() const override { return root_ / "Documents"; }
    std::filesystem::path caches() const override { return root_ / "Caches"; }
    std::filesystem::path temporary() const override { return root_ / "Temporary"; }
    std::filesystem::path resources() const override { return root_ / "Resources"; }

private:
    std::filesystem::path root_;
};

}  // namespace halvane::test
