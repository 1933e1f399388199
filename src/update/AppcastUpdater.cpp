#include "update/AppcastUpdater.h"

#include <utility>

namespace halvane::update {

AppcastUpdater::AppcastUpdater(Collaborators collaborators) : to_(std::move(collaborators)) {}

AppcastUpdater::~AppcastUpdater() = default;

void AppcastUpdater::checkForUpdatesInBackground() {
    background_ = makeCheck();
    background_->start([this](const FeedCheck::Answer& answer) {
        const auto check = std::move(background_);
        if (answer && *answer) session().offer(**answer);
    });
}

void AppcastUpdater::checkForUpdateInformation() {
    information_ = makeCheck();
    information_->start([this](const FeedCheck::Answer& answer) {
        const auto check = std::move(information_);
        if (!answer) return;
        const Delegate delegate = delegate_;  // it may be replaced meanwhile
        if (!*answer && delegate.didNotFindUpdate) delegate.didNotFindUpdate();
        if (*answer && delegate.didFindValidUpdate) delegate.didFindValidUpdate((*answer)->version);
    });
}

void AppcastUpdater::checkForUpdates() { session().check(); }

std::unique_ptr<FeedCheck> AppcastUpdater::makeCheck() {
    return std::make_unique<FeedCheck>(FeedCheck::Collaborators{http(), to_.preferences, to_.log, to_.now, to_.source, to_.client});
}

std::unique_ptr<PackageDownload> AppcastUpdater::makeDownload() {
    return std::make_unique<PackageDownload>(
        PackageDownload::Collaborators{http(), to_.files, to_.mainQueue, to_.worker, to_.directory, to_.source});
}

const std::shared_ptr<platform::HttpSession>& AppcastUpdater::http() {
    if (!http_) http_ = to_.transport.makeSession({.resultQueue = to_.mainQueue});
    return http_;
}

UpdateSession& AppcastUpdater::session() {
    if (!session_) {
        screen_ = to_.makeScreen();
        session_ = std::make_unique<UpdateSession>(
            *screen_, UpdateSession::Collaborators{[this] { return makeCheck(); }, [this] { return makeDownload(); }, to_.installer,
                                                   to_.log, to_.restart, to_.client.version});
    }
    return *session_;
}

}  // namespace halvane::update
