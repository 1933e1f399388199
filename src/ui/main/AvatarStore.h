#pragma once

#include "util/Bytes.h"

#include <QImage>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace halvane::platform {
class Directories;
class DispatchQueue;
class FileStore;
class HttpSession;
class HttpTransport;
struct HttpDataResult;
}  // namespace halvane::platform
namespace halvane::util {
class Log;
}

namespace halvane::ui {

class AvatarCache;

/// Pictures of people by address: fetched once in the life of the program, kept on disk for the next. One that
/// could not be fetched is tried again when it is next asked for.
/// Main thread; nothing in it waits for the disk, the network or a decoder. Nobody's session token is sent.
/// Destroying the store cancels what is under way, and nothing arrives any more.
class AvatarStore {
public:
    struct Collaborators {
        platform::HttpTransport& transport;
        std::shared_ptr<platform::DispatchQueue> mainQueue;
        std::shared_ptr<platform::DispatchQueue> worker;
        platform::FileStore& files;  ///< outlives what the worker runs
        const platform::Directories& directories;
        util::Log& log;
        std::string userAgent;
    };
    using Arrived = std::function<void(const QImage&)>;

    explicit AvatarStore(Collaborators collaborators);
    ~AvatarStore();
    AvatarStore(const AvatarStore&) = delete;
    AvatarStore& operator=(const AvatarStore&) = delete;

    /// `arrived` is called later, at most twice: with the picture on disk, and with the server's when that is
    /// another. Not at all when there is neither; then a line of the log says why. `url`: absolute, http or https,
    /// without a user's name. `arrived` may load again, and may destroy the store.
    void load(const std::string& url, Arrived arrived);

private:
    struct Picture {
        bool asked = false;      ///< the server, which has not failed to answer
        bool final = false;      ///< the server's is here
        bool cacheRead = false;  ///< and shown, if there was one
        util::Bytes bytes;       ///< what `image` was made of
        QImage image;
        std::vector<Arrived> waiting;
    };

    void readCached(const std::string& url);
    void cacheRead(const std::string& url, const util::Bytes& bytes, const QImage& image);
    void fetch(const std::string& url);
    void fetched(const std::string& url, const platform::HttpDataResult& result);
    void decoded(const std::string& url, const util::Bytes& bytes, const QImage& image);
    void tell(const std::vector<Arrived>& waiting, const QImage& image);
    void giveUp(const std::string& url, const std::string& why);

    Collaborators to_;
    std::shared_ptr<AvatarCache> cache_;  ///< the worker may still use it when the store is gone
    std::map<std::string, Picture> pictures_;
    std::shared_ptr<platform::HttpSession> session_;  ///< made by the first fetch
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace halvane::ui
