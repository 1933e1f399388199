#include "ui/main/AvatarStore.h"

#include "platform/Directories.h"
#include "platform/DispatchQueue.h"
#include "platform/FileStore.h"
#include "platform/HttpSession.h"
#include "ui/main/AvatarImage.h"
#include "util/Log.h"
#include "util/Text.h"

#include <QCryptographicHash>
#include <utility>

namespace halvane::ui {

namespace {

constexpr std::uint64_t kLargest = 4 * 1024 * 1024;  // bytes

bool isFetchable(const std::string& url) {
    const std::string scheme = util::lowercasedAscii(url.substr(0, url.find("://")));
    return scheme == "http" || scheme == "https";
}

}  // namespace

AvatarStore::AvatarStore(Collaborators collaborators) : to_(std::move(collaborators)) {}

AvatarStore::~AvatarStore() {
    alive_.reset();
    if (session_) session_->invalidateCancelingTasks();
}

std::filesystem::path AvatarStore::fileOf(const std::string& url) const {
    const auto digest = QCryptographicHash::hash(QByteArray::fromStdString(url), QCryptographicHash::Sha256).toHex();
    return to_.directories.caches() / "avatars" / digest.toStdString();
}

void AvatarStore::load(const std::string& url, Arrived arrived) {
    if (!isFetchable(url)) return to_.log.write("avatar: its address is not one of the web");
    Picture& picture = pictures_[url];
    if (!picture.image.isNull()) {
        to_.mainQueue->async([alive = std::weak_ptr(alive_), arrived, image = picture.image] {
            if (!alive.expired()) arrived(image);
        });
    }
    if (!picture.final) picture.waiting.push_back(std::move(arrived));
    if (std::exchange(picture.asked, true)) return;
    if (!picture.cacheRead) readCached(url);
    fetch(url);
}

void AvatarStore::readCached(const std::string& url) {
    to_.worker->async([this, alive = std::weak_ptr(alive_), &files = to_.files, mainQueue = to_.mainQueue, url, file = fileOf(url)] {
        const auto read = files.read(file);
        const util::Bytes bytes = read ? *read : util::Bytes();
        mainQueue->async([this, alive, url, bytes, image = AvatarImage::decoded(bytes)] {
            if (!alive.expired()) cacheRead(url, bytes, image);
        });
    });
}

void AvatarStore::cacheRead(const std::string& url, const util::Bytes& bytes, const QImage& image) {
    pictures_[url].cacheRead = true;
    if (!image.isNull() && !pictures_[url].final) show(url, bytes, image);
    if (!pictures_[url].asked) pictures_[url].waiting.clear();  // the server failed before the disk answered
}

void AvatarStore::fetch(const std::string& url) {
    if (!session_) session_ = to_.transport.makeSession({.resultQueue = to_.mainQueue, .tls = {}});
    platform::HttpRequest request{.url = url};
    request.headers.set("User-Agent", to_.userAgent);
    const auto task = std::make_shared<std::weak_ptr<platform::HttpTask>>();
    const auto made =
        session_->dataTask(std::move(request), {.onUploadProgress = {},
                                                .onDownloadProgress =
                                                    [task](const platform::HttpProgress& progress) {
                                                        if (std::max(progress.completed, progress.total.value_or(0)) <= kLargest) return;
                                                        if (const auto running = task->lock()) running->cancel();
                                                    },
                                                .onCompletion =
                                                    [this, alive = std::weak_ptr(alive_), url](const platform::HttpDataResult& result) {
                                                        if (!alive.expired()) fetched(url, result);
                                                    }});
    *task = made;
    made->resume();
}

void AvatarStore::fetched(const std::string& url, const platform::HttpDataResult& result) {
    if (result.error) return giveUp(url, result.error->description);
    if (!result.response || !result.response->isSuccess()) return giveUp(url, "the server refused it");
    if (result.body.size() > kLargest) return giveUp(url, "it is too large");
    to_.worker->async(
        [this, alive = std::weak_ptr(alive_), &files = to_.files, mainQueue = to_.mainQueue, url, file = fileOf(url), bytes = result.body] {
            const QImage image = AvatarImage::decoded(bytes);
            // Without the file the next start fetches it before it can show it.
            if (!image.isNull() && files.makeDirectory(file.parent_path())) (void)files.write(file, bytes);
            mainQueue->async([this, alive, url, bytes, image] {
                if (!alive.expired()) decoded(url, bytes, image);
            });
        });
}

void AvatarStore::decoded(const std::string& url, const util::Bytes& bytes, const QImage& image) {
    if (image.isNull()) return giveUp(url, "it is no picture that can be shown");
    Picture& picture = pictures_[url];
    picture.final = true;
    if (picture.bytes != bytes) show(url, bytes, image);
    pictures_[url].waiting.clear();
}

void AvatarStore::show(const std::string& url, const util::Bytes& bytes, const QImage& image) {
    Picture& picture = pictures_[url];
    picture.bytes = bytes;
    picture.image = image;
    // Copies, because whoever is called may load again.
    for (const auto waiting = picture.waiting; const Arrived& arrived : waiting) arrived(image);
}

void AvatarStore::giveUp(const std::string& url, const std::string& why) {
    Picture& picture = pictures_[url];
    picture.asked = false;
    if (picture.cacheRead) picture.waiting.clear();
    to_.log.write("avatar: not loaded: " + why);
}

}  // namespace halvane::ui
