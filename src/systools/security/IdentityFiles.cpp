#include "systools/security/IdentityFiles.h"

#include "util/Digest.h"

#include <cctype>
#include <cerrno>

namespace halvane::systools {

namespace {

constexpr std::size_t kLongestName = 200;  // bytes; file systems take 255
constexpr std::size_t kDigestDigits = 32;

/// Letters, digits, "-", "_", "@" and inner dots stay, everything else becomes %xx: what it yields is
/// one plain component of a path, and of a URL.
std::string fileSafe(const std::string& name) {
    std::string safe;
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        const bool plain =
            byte < 0x80 && (std::isalnum(byte) != 0 || byte == '-' || byte == '_' || byte == '@' || (byte == '.' && !safe.empty()));
        if (plain) {
            safe.push_back(c);
        } else {
            safe += '%' + util::Digest::stringFromBytes(&byte, 1);
        }
    }
    return safe;
}

}  // namespace

std::filesystem::path IdentityFiles::pathOf(const std::string& commonName) const {
    std::string name = fileSafe(commonName);
    if (name.size() > kLongestName)
        name = name.substr(0, kLongestName) + "%" + util::Digest::of(util::Digest::Algorithm::Sha256, commonName).substr(0, kDigestDigits);
    return directory_ / (name + ".p12");
}

util::Result<std::optional<util::Bytes>> IdentityFiles::read(const std::string& commonName) const {
    auto bytes = files_.read(pathOf(commonName));
    if (bytes) return std::optional(std::move(*bytes));
    if (bytes.error().code == ENOENT || bytes.error().code == ENOTDIR) return std::optional<util::Bytes>();
    return bytes.error();
}

util::Result<void> IdentityFiles::write(const std::string& commonName, const util::Bytes& bytes) {
    return files_.write(pathOf(commonName), bytes);
}

util::Result<void> IdentityFiles::remove(const std::string& commonName) {
    auto removed = files_.remove(pathOf(commonName));
    if (removed || removed.error().code == ENOENT || removed.error().code == ENOTDIR) return {};
    return removed;
}

util::Result<void> IdentityFiles::prepare() {
    if (auto made = files_.makeDirectory(directory_); !made) return made;
    std::error_code error;
    std::filesystem::permissions(directory_, std::filesystem::perms::owner_all, error);
    if (error) return util::fileError(error.value(), "make " + directory_.string() + " private");
    return {};
}

}  // namespace halvane::systools
