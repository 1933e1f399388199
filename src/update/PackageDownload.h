#pragma once

#include "platform/HttpSession.h"
#include "update/UpdateItem.h"
#include "update/UpdateSource.h"

#include <filesystem>
#include <functional>
#include <memory>

namespace halvane::platform {
class DispatchQueue;
class FileStore;
}  // namespace halvane::platform

namespace halvane::update {

/// One package on its way to a file of this user's: fetched, then its length and signature verified before anybody opens it.
/// The directory is its own: whatever an earlier download, cut off, left in it is removed first, and the file when it is refused.
///
/// Main thread, where the observer is told: progress in order, then that the bytes are there, then the end, once. Destroying it,
/// which the observer may do, ends it without a word.
class PackageDownload {
public:
    struct Collaborators {
        std::shared_ptr<platform::HttpSession> session;  ///< its results come on the main thread
        platform::FileStore& files;                      ///< outlives what waits on `worker`
        std::shared_ptr<platform::DispatchQueue> mainQueue;
        /// Serial: where files are read and signatures verified, one download's after another's.
        std::shared_ptr<platform::DispatchQueue> worker;
        std::filesystem::path directory;
        UpdateSource source;
    };
    struct Observer {
        std::function<void(const platform::HttpProgress&)> onProgress;
        std::function<void()> onVerifying;
        std::function<void(const util::Result<std::filesystem::path>&)> onEnd;
    };

    explicit PackageDownload(Collaborators collaborators);
    ~PackageDownload();
    PackageDownload(const PackageDownload&) = delete;
    PackageDownload& operator=(const PackageDownload&) = delete;

    void start(const UpdateItem& item, Observer observer);

private:
    void fetch(const UpdateItem& item);
    void fetched(const UpdateItem& item, const platform::HttpDownloadResult& result);
    void verify(const UpdateItem& item, const std::filesystem::path& file);
    void end(const util::Result<std::filesystem::path>& outcome);

    const Collaborators to_;
    Observer observer_;
    std::shared_ptr<platform::HttpTask> task_;
    std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

}  // namespace halvane::update
