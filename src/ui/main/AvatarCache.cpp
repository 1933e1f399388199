#include "ui/main/AvatarCache.h"

#include "platform/FileStore.h"
#include "util/Text.h"

#include <QCryptographicHash>
#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

namespace halvane::ui {

namespace {

constexpr std::size_t kMost = 64;
constexpr const char* kList = "list";  // names of the files, a line each, the oldest first

std::string nameOf(const std::string& url) {
    return QCryptographicHash::hash(QByteArray::fromStdString(url), QCryptographicHash::Sha256).toHex().toStdString();
}

/// The list is a file like any other: a damaged one must not have other files removed.
bool isName(std::string_view text) { return text.size() == 64 && text.find_first_not_of("0123456789abcdef") == std::string_view::npos; }

}  // namespace

AvatarCache::AvatarCache(platform::FileStore& files, std::filesystem::path directory) : files_(files), directory_(std::move(directory)) {}

util::Bytes AvatarCache::read(const std::string& url) const {
    const auto read = files_.read(directory_ / nameOf(url));
    return read ? *read : util::Bytes();
}

void AvatarCache::keep(const std::string& url, const util::Bytes& bytes) {
    const std::string name = nameOf(url);
    const std::lock_guard lock(mutex_);
    // Listed first: a file that no list names would never go.
    if (!files_.makeDirectory(directory_)) return;
    noteNewest(name);
    (void)files_.write(directory_ / name, bytes);
}

void AvatarCache::noteNewest(const std::string& name) {
    const auto list = files_.read(directory_ / kList);
    std::vector<std::string> names = util::split(list ? *list : util::Bytes(), '\n');
    std::erase_if(names, [&name](const std::string& kept) { return !isName(kept) || kept == name; });
    names.push_back(name);
    const auto tooMany = static_cast<std::ptrdiff_t>(names.size() - std::min(names.size(), kMost));
    std::for_each(names.begin(), names.begin() + tooMany, [this](const std::string& oldest) { (void)files_.remove(directory_ / oldest); });
    names.erase(names.begin(), names.begin() + tooMany);
    util::Bytes written;
    for (const auto& kept : names) written.append(kept).append("\n");
    (void)files_.write(directory_ / kList, written);
}

}  // namespace halvane::ui
