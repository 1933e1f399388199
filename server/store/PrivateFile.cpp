#include "server/store/PrivateFile.h"

#include "server/store/StagedFile.h"

#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>

namespace halvane::server {

void PrivateFile::makeDirectory(const std::filesystem::path& directory) {
    if (std::filesystem::is_directory(directory)) return;
    if (std::filesystem::create_directories(directory)) {
        std::filesystem::permissions(directory, std::filesystem::perms::owner_all);
    }
}

PrivateFile::Created PrivateFile::write(const std::filesystem::path& file, std::string_view content) {
    return StagedFile(file, content).take() ? Created::Yes : Created::AlreadyThere;
}

util::Bytes PrivateFile::readOrMake(const std::filesystem::path& file, const std::function<util::Bytes()>& make) {
    if (!std::filesystem::exists(file)) static_cast<void>(write(file, make()));
    // Read in any case: another process may have been quicker.
    std::ifstream stream(file, std::ios::binary);
    if (!stream) throw std::system_error(errno, std::generic_category(), "cannot read " + file.string());
    return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace halvane::server
