#include "linux/device/SystemFiles.h"

#include "util/Text.h"

#include <algorithm>
#include <charconv>
#include <fstream>

namespace halvane::linux {

std::optional<unsigned long long> wholeNumber(const std::string& text, int base) {
    unsigned long long value = 0;
    const char* end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, value, base);
    if (error != std::errc() || stopped != end) return std::nullopt;
    return value;
}

std::optional<std::string> SystemFiles::text(const std::string& path) const {
    std::ifstream file(root_ / path, std::ios::binary);
    if (!file) return std::nullopt;
    // These files have no size to ask for: they are made while they are read.
    std::string bytes;
    char piece[16384];
    while (file.read(piece, sizeof piece) || file.gcount() > 0) {
        bytes.append(piece, static_cast<std::size_t>(file.gcount()));
        if (bytes.size() > kLongestText) return std::nullopt;
    }
    // A directory opens, and only then refuses to be read.
    if (file.bad()) return std::nullopt;
    return bytes;
}

std::optional<std::string> SystemFiles::line(const std::string& path) const {
    auto whole = text(path);
    if (!whole) return std::nullopt;
    std::string first = whole->substr(0, whole->find('\n'));
    first.resize(std::min(first.size(), first.find('\0')));
    first = util::trimmed(first);
    if (first.empty()) return std::nullopt;
    return first;
}

std::optional<unsigned long long> SystemFiles::number(const std::string& path) const {
    const auto found = line(path);
    return found ? wholeNumber(*found) : std::nullopt;
}

std::vector<std::string> SystemFiles::names(const std::string& directory) const {
    std::vector<std::string> found;
    std::error_code error;
    for (auto entry = std::filesystem::directory_iterator(root_ / directory, error);
         !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        found.push_back(entry->path().filename().string());
    }
    std::ranges::sort(found);
    return found;
}

bool SystemFiles::exists(const std::string& path) const {
    std::error_code error;
    return std::filesystem::exists(root_ / path, error);
}

}  // namespace halvane::linux
