#pragma once

#include "platform/HttpSession.h"
#include "update/Appcast.h"
#include "update/UpdateSource.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace halvane::platform {
class Preferences;
}
namespace halvane::util {
class Log;
}

namespace halvane::update {

/// One look at the feed: fetched, verified, held against what was seen before and against the client that runs. Which feed was
/// the newest is remembered in the preferences. Main thread, where the answer comes, once, after `start` has returned.
/// Destroying it, which the answer may do, ends the look without an answer.
class FeedCheck {
public:
    struct Collaborators {
        std::shared_ptr<platform::HttpSession> session;  ///< its results come on the main thread
        platform::Preferences& preferences;
        util::Log& log;
        std::function<Appcast::Instant()> now;
        UpdateSource source;
        InstalledClient client;
    };
    /// The update, absent when there is nothing newer; or why nobody knows. Its address is absolute.
    using Answer = util::Result<std::optional<UpdateItem>>;

    explicit FeedCheck(Collaborators collaborators);
    ~FeedCheck();
    FeedCheck(const FeedCheck&) = delete;
    FeedCheck& operator=(const FeedCheck&) = delete;

    void start(std::function<void(const Answer&)> onAnswer);

private:
    [[nodiscard]] Answer answerTo(const platform::HttpDataResult& result);
    [[nodiscard]] Answer judge(const util::Bytes& feed);

    const Collaborators to_;
    std::shared_ptr<platform::HttpTask> task_;
    std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

}  // namespace halvane::update
