#include "update/PackageDownload.h"

#include "platform/DispatchQueue.h"
#include "platform/FileStore.h"
#include "util/UpdateError.h"

#include <utility>

namespace halvane::update {

namespace {

using util::UpdateError;
using util::updateError;
using Outcome = util::Result<std::filesystem::path>;

constexpr std::chrono::seconds kLongestSilence{60};

/// Of the transfer's own errors.
util::Error reasonFor(const util::Error& error) {
    auto code = UpdateError::PackageUnreachable;
    if (error.domain == util::kUrlErrorDomain) {
        if (error.code == static_cast<int>(util::UrlError::RedirectRefused)) code = UpdateError::OtherScheme;
        if (error.code == static_cast<int>(util::UrlError::TooLarge)) code = UpdateError::PackageLonger;
        if (error.code == static_cast<int>(util::UrlError::CannotWriteFile)) code = UpdateError::CannotSave;
    }
    return updateError(code, "The update was not fetched: " + error.description);
}

/// `file` is as the feed says, or why not; then it is gone.
Outcome verified(platform::FileStore& files, const std::filesystem::path& file, const UpdateItem& item, const util::PublicKey& key) {
    const auto refused = [&](UpdateError code, const std::string& why) {
        (void)files.remove(file);
        return updateError(code, "The update " + item.version + " was refused: " + why + ".");
    };
    const auto bytes = files.read(file);
    if (!bytes) return refused(UpdateError::CannotSave, bytes.error().description);
    if (bytes->size() < item.length)
        return refused(UpdateError::PackageShorter,
                       "it has " + std::to_string(bytes->size()) + " bytes, not " + std::to_string(item.length));
    if (bytes->size() > item.length)
        return refused(UpdateError::PackageLonger, "it has more than " + std::to_string(item.length) + " bytes");
    if (!key.verifies(*bytes, item.signature)) return refused(UpdateError::PackageSignature, "it is not signed with the company's key");
    return file;
}

}  // namespace

PackageDownload::PackageDownload(Collaborators collaborators) : to_(std::move(collaborators)) {}

PackageDownload::~PackageDownload() {
    alive_.reset();
    if (task_) task_->cancel();
}

void PackageDownload::start(const UpdateItem& item, Observer observer) {
    observer_ = std::move(observer);
    const auto emptied = [files = &to_.files, directory = to_.directory] {
        if (auto removed = files->removeDirectory(directory); !removed) return removed;
        return files->makeDirectory(directory);
    };
    to_.worker->async([this, alive = std::weak_ptr(alive_), emptied, mainQueue = to_.mainQueue, item] {
        mainQueue->async([this, alive, item, ready = emptied()] {
            if (alive.expired()) return;
            if (!ready) return end(updateError(UpdateError::CannotSave, ready.error().description));
            fetch(item);
        });
    });
}

void PackageDownload::fetch(const UpdateItem& item) {
    platform::HttpRequest request{.url = item.url,
                                  .headers = {{"User-Agent", to_.source.userAgent}},
                                  .timeout = kLongestSilence,
                                  .redirects = platform::HttpRequest::Redirects::SameScheme,
                                  .largestReply = item.length};
    const auto file = to_.directory / (item.package + "_" + item.version + "_" + item.architecture + ".deb");
    task_ =
        to_.session->downloadTask(std::move(request), {.destination = [file](const auto&) { return file; },
                                                       .onProgress =
                                                           [this, alive = std::weak_ptr(alive_)](const platform::HttpProgress& progress) {
                                                               if (!alive.expired()) observer_.onProgress(progress);
                                                           },
                                                       .onCompletion =
                                                           [this, alive = std::weak_ptr(alive_), item](const auto& result) {
                                                               if (!alive.expired()) fetched(item, result);
                                                           }});
    task_->resume();
}

void PackageDownload::fetched(const UpdateItem& item, const platform::HttpDownloadResult& result) {
    if (result.error) return end(reasonFor(*result.error));
    const std::weak_ptr alive(alive_);
    observer_.onVerifying();
    if (!alive.expired()) verify(item, *result.file);
}

void PackageDownload::verify(const UpdateItem& item, const std::filesystem::path& file) {
    to_.worker->async(
        [this, alive = std::weak_ptr(alive_), files = &to_.files, key = to_.source.key, mainQueue = to_.mainQueue, item, file] {
            mainQueue->async([this, alive, outcome = verified(*files, file, item, key)] {
                if (!alive.expired()) end(outcome);
            });
        });
}

void PackageDownload::end(const Outcome& outcome) {
    const auto onEnd = std::move(observer_.onEnd);  // it may destroy us
    onEnd(outcome);
}

}  // namespace halvane::update
