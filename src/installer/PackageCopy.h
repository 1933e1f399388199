#pragma once

#include "linux/base/Descriptor.h"
#include "util/Bytes.h"
#include "util/Result.h"

#include <cstdint>
#include <filesystem>

namespace halvane::installer {

/// The administrator's own copy of a package, under a name that nobody could foresee. The file goes with this object. One thread.
class PackageCopy {
public:
    /// More nobody sends.
    static constexpr std::uint64_t kLargest = std::uint64_t{256} << 20;
    static constexpr const char* kPrefix = "package-";
    static constexpr const char* kSuffix = ".deb";

    explicit PackageCopy(std::filesystem::path directory);
    ~PackageCopy();
    PackageCopy(const PackageCopy&) = delete;
    PackageCopy& operator=(const PackageCopy&) = delete;

    /// Copies what is read from `package`, a descriptor, to its end. Answers the bytes that were written, which are what is to be
    /// verified: the caller's may change under us. Errors: NoSpace, CannotCopy, OtherPackage for what is too large.
    util::Result<util::Bytes> take(int package);
    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
    linux::Descriptor file_;
    int problem_ = 0;
};

}  // namespace halvane::installer
