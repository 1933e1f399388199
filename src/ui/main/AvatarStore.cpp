#include "ui/main/AvatarStore.h"

#include "platform/Directories.h"
#include "platform/DispatchQueue.h"
#include "platform/HttpSession.h"
#include "ui/main/AvatarCache.h"
#include "ui/main/AvatarImage.h"
#include "util/Log.h"
#include "util/Text.h"

#include <algorithm>
#include <utility>

namespace halvane::ui {

namespace {

constexpr std::uint64_t kLargest = 4 * 1024 * 1024;  // bytes

/// A name before the host would be sent along as somebody's sign-in.
bool isFetchable(const std::string& url) {
    const std::size_t end = url.find("://");
    if (end == std::string::npos) return false;
    const std::string scheme = util::lowercasedAscii(url.substr(0, end));
    const std::string rest = url.substr(end + 3);
    return (scheme == "http" || scheme == "https") && rest.substr(0, rest.find_first_of("/?#")).find('@') == std::string::npos;
}

}  // namespace

AvatarStore::AvatarStore(Collaborators collaborators)
    : to_(std::move(collaborators)), cache_(std::make_shared<AvatarCache>(to_.files, to_.directories.caches() / "avatars")) {}

AvatarStore::~AvatarStore() {
    alive_.reset();
    if (session_) session_->invalidateCancelingTasks();
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
    to_.worker->async([this, alive = std::weak_ptr(alive_), cache = cache_, mainQueue = to_.mainQueue, url] {
        const util::Bytes bytes = cache->read(url);
        mainQueue->async([this, alive, url, bytes, image = AvatarImage::decoded(bytes)] {
            if (!alive.expired()) cacheRead(url, bytes, image);
        });
    });
}

void AvatarStore::cacheRead(const std::string& url, const util::Bytes& bytes, const QImage& image) {
    Picture& picture = pictures_[url];
    picture.cacheRead = true;
    // Copies, because whoever is called may load again or destroy the store; so it comes last.
    const auto waiting = picture.waiting;
    if (!picture.asked) picture.waiting.clear();  // the server failed before the disk answered
    if (image.isNull() || picture.final) return;
    picture.bytes = bytes;
    picture.image = image;
    tell(waiting, image);
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
    to_.worker->async([this, alive = std::weak_ptr(alive_), cache = cache_, mainQueue = to_.mainQueue, url, bytes = result.body] {
        const QImage image = AvatarImage::decoded(bytes);
        if (!image.isNull()) cache->keep(url, bytes);
        mainQueue->async([this, alive, url, bytes, image] {
            if (!alive.expired()) decoded(url, bytes, image);
        });
    });
}

void AvatarStore::decoded(const std::string& url, const util::Bytes& bytes, const QImage& image) {
    if (image.isNull()) return giveUp(url, "it is no picture that can be shown");
    Picture& picture = pictures_[url];
    picture.final = true;
    const auto waiting = std::exchange(picture.waiting, {});
    if (picture.bytes == bytes) return;
    picture.bytes = bytes;
    picture.image = image;
    tell(waiting, image);
}

void AvatarStore::tell(const std::vector<Arrived>& waiting, const QImage& image) {
    for (const std::weak_ptr alive(alive_); const Arrived& arrived : waiting) {
        if (alive.expired()) return;
        arrived(image);
    }
}

void AvatarStore::giveUp(const std::string& url, const std::string& why) {
    Picture& picture = pictures_[url];
    picture.asked = false;
    if (picture.cacheRead) picture.waiting.clear();
    to_.log.write("avatar: not loaded: " + why);
}

}  // namespace halvane::ui
