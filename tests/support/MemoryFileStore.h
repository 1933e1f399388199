#pragma once

#include "platform/FileStore.h"

#include <cerrno>
#include <map>
#include <set>
#include <vector>

namespace halvane::test {

/// Files in memory, with refusals on demand and a record of what was asked, in order.
class MemoryFileStore final : public platform::FileStore {
public:
    util::Result<util::Bytes> read(const std::filesystem::path& path) const override {
        const auto found = files.find(path);
        if (found == files.end()) return util::fileError(ENOENT, path);
        if (unreadable.contains(path)) return util::fileError(EACCES, path);
        return found->second;
    }
    util::Result<void> write(const std::filesystem::path& path, const util::Bytes& bytes) override {
        calls.push_back("write " + path.string());
        if (refuseWrites || !directories.contains(path.parent_path())) return util::fileError(refuseWrites ? ENOSPC : ENOENT, path);
        files[path] = bytes;
        return {};
    }
    util::Result<void> makeDirectory(const std::filesystem::path& path) override {
        calls.push_back("mkdir " + path.string());
        if (refuseDirectories) return util::fileError(EACCES, path);
        for (auto p = path; p != p.parent_path(); p = p.parent_path()) directories.insert(p);
        return {};
    }
    util::Result<void> remove(const std::filesystem::path& path) override {
        calls.push_back("remove " + path.string());
        if (refuseRemoval) return util::fileError(EACCES, path);
        if (files.erase(path) == 0) return util::fileError(ENOENT, path);
        return {};
    }
    util::Result<void> removeDirectory(const std::filesystem::path& path) override {
        calls.push_back("remove all of " + path.string());
        if (refuseRemoval) return util::fileError(EACCES, path);
        const auto isInside = [&path](const std::filesystem::path& each) { return (each / "").native().starts_with((path / "").native()); };
        std::erase_if(files, [&](const auto& file) { return isInside(file.first); });
        std::erase_if(directories, isInside);
        return {};
    }
    bool exists(const std::filesystem::path& path) const override { return files.contains(path) || directories.contains(path); }

    std::map<std::filesystem::path, util::Bytes> files;
    std::set<std::filesystem::path> directories;
    std::set<std::filesystem::path> unreadable;
    bool refuseWrites = false;
    bool refuseDirectories = false;
    bool refuseRemoval = false;
    std::vector<std::string> calls;
};

}  // namespace halvane::test
