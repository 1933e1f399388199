#include "session/HDCLUserConfig.h"

#include "platform/Directories.h"
#include "platform/FileStore.h"
#include "platform/Preferences.h"
#include "util/SharedInstance.h"

namespace halvane::session {

namespace {
constexpr const char* kLastUserKey = "puid";
constexpr const char* kDirectoryName = "LoginFile";
}  // namespace

HDCLUserConfig::HDCLUserConfig(platform::Preferences& preferences, platform::FileStore& files, const platform::Directories& directories)
    : preferences_(preferences), files_(files), directories_(directories) {}

HDCLUserConfig& HDCLUserConfig::sharedUser() { return util::SharedInstance<HDCLUserConfig>::get(); }

void HDCLUserConfig::user_loginSuccessWithDic(const std::optional<util::Dictionary>& dictionary) {
    if (!dictionary || dictionary->empty()) return;
    currentUserModel_ = HDCLUserModel::fromDictionary(*dictionary);
    if (currentUserModel_->job_number) {
        preferences_.set(kLastUserKey, *currentUserModel_->job_number);
    } else {
        preferences_.remove(kLastUserKey);
    }
    preferences_.flush();
    user_achieveUserInfo();
}

void HDCLUserConfig::user_updateLocalInfoWithDic(const std::optional<util::Dictionary>& dictionary) {
    if (dictionary && user_getUserInfo() != nullptr) currentUserModel_->header_img = util::textOf(dictionary->find(""));
    user_achieveUserInfo();
}

void HDCLUserConfig::user_achieveUserInfo() {
    // Failures are the user's to live with for this run only; there is nobody to tell.
    (void)files_.makeDirectory(file());
    const HDCLUserModel* model = user_getUserInfo();
    if (model == nullptr) return;
    if (const auto path = filePathWithUid(model->job_number)) (void)files_.write(*path, model->archived());
}

const HDCLUserModel* HDCLUserConfig::user_getUserInfo() {
    if (!currentUserModel_) currentUserModel_ = loadLastUser();
    return currentUserModel_ ? &*currentUserModel_ : nullptr;
}

std::optional<HDCLUserModel> HDCLUserConfig::loadLastUser() const {
    const auto path = filePathWithUid(preferences_.text(kLastUserKey));
    if (!path) return std::nullopt;
    const auto archive = files_.read(*path);
    if (!archive) return std::nullopt;
    auto model = HDCLUserModel::unarchived(*archive);
    return model ? std::optional(*std::move(model)) : std::nullopt;
}

bool HDCLUserConfig::user_isLogin() {
    const HDCLUserModel* model = user_getUserInfo();
    return model != nullptr && model->token.has_value();
}

void HDCLUserConfig::user_deleteUserInfo() {
    if (const auto path = filePathWithUid(preferences_.text(kLastUserKey))) (void)files_.remove(*path);
    preferences_.flush();
    currentUserModel_.reset();
}

std::optional<std::filesystem::path> HDCLUserConfig::filePathWithUid(const std::optional<std::string>& uid) const {
    if (!uid || uid->empty() || *uid == "." || *uid == "..") return std::nullopt;
    if (uid->find('/') != std::string::npos || uid->find('\0') != std::string::npos) return std::nullopt;
    return file() / (*uid + ".plist");
}

std::filesystem::path HDCLUserConfig::file() const { return directories_.documents() / kDirectoryName; }

}  // namespace halvane::session
