#include "update/FeedCheck.h"

#include "platform/Preferences.h"
#include "util/Log.h"
#include "util/UpdateError.h"
#include "util/Url.h"

#include <utility>

namespace halvane::update {

namespace {

using util::UpdateError;
using util::updateError;

constexpr const char* kNewestSeen = "HALVANE_UpdateFeedIssued";
constexpr std::chrono::seconds kLongestSilence{20};

UpdateError codeOf(const util::Error& error) {
    if (error.domain != util::kUrlErrorDomain) return UpdateError::FeedUnreachable;
    if (error.code == static_cast<int>(util::UrlError::RedirectRefused)) return UpdateError::OtherScheme;
    if (error.code == static_cast<int>(util::UrlError::TooLarge)) return UpdateError::FeedUnreadable;
    return UpdateError::FeedUnreachable;
}

}  // namespace

FeedCheck::FeedCheck(Collaborators collaborators) : to_(std::move(collaborators)) {}

FeedCheck::~FeedCheck() {
    alive_.reset();
    if (task_) task_->cancel();
}

void FeedCheck::start(std::function<void(const Answer&)> onAnswer) {
    platform::HttpRequest request{.url = to_.source.feedUrl,
                                  .headers = {{"User-Agent", to_.source.userAgent}, {"Cache-Control", "no-cache"}},
                                  .timeout = kLongestSilence,
                                  .redirects = platform::HttpRequest::Redirects::SameScheme,
                                  .largestReply = Appcast::kLongest};
    task_ = to_.session->dataTask(
        std::move(request),
        {.onCompletion = [this, alive = std::weak_ptr(alive_), onAnswer = std::move(onAnswer)](const platform::HttpDataResult& result) {
            if (alive.expired()) return;
            const Answer answer = answerTo(result);
            if (!answer) to_.log.write("updates: " + answer.error().description);
            onAnswer(answer);
        }});
    task_->resume();
}

FeedCheck::Answer FeedCheck::answerTo(const platform::HttpDataResult& result) {
    if (result.error) return updateError(codeOf(*result.error), "The update feed was not fetched: " + result.error->description);
    if (!result.response || !result.response->isSuccess())
        return updateError(UpdateError::FeedUnreachable,
                           "The update server answered with status " + std::to_string(result.response ? result.response->status : 0) + ".");
    return judge(result.body);
}

FeedCheck::Answer FeedCheck::judge(const util::Bytes& feed) {
    const auto appcast = Appcast::read(feed, to_.source.key);
    if (!appcast) return appcast.error();
    const auto seen = to_.preferences.text(kNewestSeen);
    const auto newestSeen = seen ? Appcast::instantOf(*seen) : std::nullopt;
    if (const auto fresh = appcast->checkFresh(to_.now(), newestSeen); !fresh) return fresh.error();
    if (!newestSeen || appcast->issued() > *newestSeen) {
        to_.preferences.set(kNewestSeen, Appcast::textOf(appcast->issued()));
        to_.preferences.flush();
    }
    auto item = appcast->updateFor(to_.client);
    if (!item) return item;
    const auto url = util::resolvedUrl(to_.source.feedUrl, item->url);
    const auto from = util::originOf(to_.source.feedUrl);
    const auto to = url ? util::originOf(*url) : std::nullopt;
    if (!from || !to || from->scheme != to->scheme)
        return updateError(UpdateError::OtherScheme, "The update feed names a package whose address is of another scheme.");
    item->url = *url;
    return item;
}

}  // namespace halvane::update
