#include "installer/PackageCopy.h"

#include "util/UpdateError.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace halvane::installer {

namespace {

using util::UpdateError;
using util::updateError;

util::Error writeError(int code, const std::filesystem::path& file) {
    const bool isFull = code == ENOSPC || code == EDQUOT;
    return updateError(isFull ? UpdateError::NoSpace : UpdateError::CannotCopy,
                       util::fileError(code, "copy the package to " + file.string()).description);
}

}  // namespace

PackageCopy::PackageCopy(std::filesystem::path directory) : path_(std::move(directory)) {
    std::string name = (path_ / (std::string(kPrefix) + "XXXXXX" + kSuffix)).string();
    file_ = linux::Descriptor(::mkostemps(name.data(), static_cast<int>(std::strlen(kSuffix)), O_CLOEXEC));
    if (!file_) problem_ = errno;
    path_ = name;
}

PackageCopy::~PackageCopy() {
    if (file_) ::unlink(path_.c_str());
}

util::Result<util::Bytes> PackageCopy::take(int package) {
    if (problem_ != 0) return writeError(problem_, path_);
    util::Bytes bytes;
    std::vector<char> buffer(std::size_t{256} << 10);
    while (true) {
        const auto got = ::read(package, buffer.data(), buffer.size());
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return updateError(UpdateError::CannotCopy, util::fileError(errno, "read the package").description);
        if (got == 0) break;
        const std::string_view piece(buffer.data(), static_cast<std::size_t>(got));
        if (bytes.size() + piece.size() > kLargest) return updateError(UpdateError::OtherPackage, "the package is too large");
        if (const int code = file_.writeAll(piece); code != 0) return writeError(code, path_);
        bytes.append(piece);
    }
    if (::fsync(file_.get()) != 0) return writeError(errno, path_);
    return bytes;
}

}  // namespace halvane::installer
