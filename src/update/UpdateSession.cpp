#include "update/UpdateSession.h"

#include "platform/PackageInstaller.h"
#include "update/UpdateTexts.h"
#include "util/Log.h"

#include <utility>

namespace halvane::update {

UpdateSession::UpdateSession(UpdateScreen& screen, Collaborators collaborators) : screen_(screen), to_(std::move(collaborators)) {
    screen_.onPrimary = [this] { primary(); };
    screen_.onSecondary = [this] { closed(); };
    screen_.onClosed = [this] { closed(); };
}

UpdateSession::~UpdateSession() { screen_.onPrimary = screen_.onSecondary = screen_.onClosed = nullptr; }

void UpdateSession::enter(Stage stage, const UpdateScene& scene) {
    stage_ = stage;
    screen_.setScene(scene);
}

void UpdateSession::check() {
    if (stage_ == Stage::Idle || stage_ == Stage::UpToDate || stage_ == Stage::Failed) beginCheck();
    screen_.present(UpdateScreen::Attention::Keyboard);
}

void UpdateSession::offer(const UpdateItem& item) {
    if (stage_ != Stage::Idle) return;
    item_ = item;
    enter(Stage::Offer, UpdateTexts::offer(item, to_.installedVersion));
    screen_.present(UpdateScreen::Attention::Quiet);
}

void UpdateSession::beginCheck() {
    enter(Stage::Checking, UpdateTexts::checking());
    check_ = to_.makeCheck();
    check_->start([this](const FeedCheck::Answer& answer) { answered(answer); });
}

void UpdateSession::answered(const FeedCheck::Answer& answer) {
    const auto check = std::move(check_);  // whose answer this is
    if (!answer) return fail(answer.error());
    item_ = *answer;
    if (item_ && ready_ && ready_->item == *item_) return enter(Stage::Ready, UpdateTexts::ready(*item_));
    if (item_) return enter(Stage::Offer, UpdateTexts::offer(*item_, to_.installedVersion));
    enter(Stage::UpToDate, UpdateTexts::upToDate(to_.installedVersion));
}

void UpdateSession::download() {
    ready_.reset();
    enter(Stage::Downloading, UpdateTexts::downloading(*item_, 0));
    download_ = to_.makeDownload();
    download_->start(
        *item_, {.onProgress = [this](const auto& progress) { screen_.setScene(UpdateTexts::downloading(*item_, progress.completed)); },
                 .onVerifying = [this] { screen_.setScene(UpdateTexts::verifying(*item_)); },
                 .onEnd = [this](const auto& outcome) { downloaded(outcome); }});
}

void UpdateSession::downloaded(const util::Result<std::filesystem::path>& outcome) {
    const auto download = std::move(download_);
    if (!outcome) {
        to_.log.write("updates: " + outcome.error().description);
        return fail(outcome.error());
    }
    ready_ = Ready{*item_, *outcome};
    enter(Stage::Ready, UpdateTexts::ready(*item_));
}

void UpdateSession::install() {
    enter(Stage::Installing, UpdateTexts::installing(*item_));
    to_.log.write("updates: installing " + item_->version);
    to_.installer.install(ready_->package, item_->signature, [this, alive = std::weak_ptr(alive_)](const util::Result<void>& outcome) {
        if (!alive.expired()) ended(outcome);
    });
}

void UpdateSession::ended(const util::Result<void>& outcome) {
    if (outcome) {
        to_.log.write("updates: " + item_->version + " is installed");
        enter(Stage::Installed, UpdateTexts::installed(*item_));
    } else {
        to_.log.write("updates: " + item_->version + " was not installed: " + outcome.error().description);
        ready_.reset();
        const bool isInstalled = UpdateTexts::isInstalledAlready(outcome.error());
        enter(isInstalled ? Stage::Installed : Stage::Failed, UpdateTexts::failed(outcome.error()));
    }
    screen_.present(UpdateScreen::Attention::Quiet);  // it may have been hidden
}

void UpdateSession::fail(const util::Error& error) { enter(Stage::Failed, UpdateTexts::failed(error)); }

void UpdateSession::primary() {
    switch (stage_) {
        case Stage::Offer:
            return download();
        case Stage::Ready:
            return install();
        case Stage::Installed:
            screen_.dismiss();
            return to_.restart();
        case Stage::UpToDate:
            return closed();
        case Stage::Failed:
            return beginCheck();
        case Stage::Idle:
        case Stage::Checking:
        case Stage::Downloading:
        case Stage::Installing:
            return;
    }
}

void UpdateSession::closed() {
    screen_.dismiss();
    if (stage_ == Stage::Installing || stage_ == Stage::Installed) return;
    check_.reset();
    download_.reset();
    item_.reset();
    stage_ = Stage::Idle;
}

}  // namespace halvane::update
