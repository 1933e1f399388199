#pragma once

#include "session/HDCLUserModel.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace halvane::platform {
class Directories;
class FileStore;
class Preferences;
}  // namespace halvane::platform

namespace halvane::session {

/// Who is signed in: the live record, one archived file per user named after the job number, and the
/// preference "puid" that names the last user. Errors of files are ignored: whoever cannot be stored
/// is signed in for this run only, and a file that cannot be read means signed out. Main thread.
class HDCLUserConfig {
public:
    HDCLUserConfig(platform::Preferences& preferences, platform::FileStore& files, const platform::Directories& directories);

    /// The process-wide store; the assembly says how it is made.
    static HDCLUserConfig& sharedUser();

    /// Begins a session from the login reply's "data". An empty or absent dictionary changes nothing.
    void user_loginSuccessWithDic(const std::optional<util::Dictionary>& dictionary);

    /// Takes the avatar's address from under the empty key, so that any ordinary dictionary clears it;
    /// an absent dictionary leaves it. Archives the record in either case.
    void user_updateLocalInfoWithDic(const std::optional<util::Dictionary>& dictionary);

    /// Writes the record to its user's file. Without a record or a job number nothing is written.
    void user_achieveUserInfo();

    /// The live record, loaded on first access and again whenever there is none. Null: signed out.
    /// The address stays valid until a login, a deletion or an update.
    [[nodiscard]] const HDCLUserModel* user_getUserInfo();
    [[nodiscard]] const HDCLUserModel* currentUserModel() { return user_getUserInfo(); }

    /// The record in the file of the user that "puid" names. Reads the disk; changes nothing.
    [[nodiscard]] std::optional<HDCLUserModel> loadLastUser() const;

    /// A record with a token; an empty token counts.
    [[nodiscard]] bool user_isLogin();

    /// Ends the session: deletes the file of the user that "puid" names, flushes the preferences, then
    /// drops the record. "puid" stays, so a file that could not be deleted signs in again.
    void user_deleteUserInfo();

    /// Absent for an absent or empty id, and for one that would leave the directory: "/" in it, "." or "..".
    [[nodiscard]] std::optional<std::filesystem::path> filePathWithUid(const std::optional<std::string>& uid) const;

    /// Always true.
    [[nodiscard]] bool isShouldUpdateCertificate() const { return true; }

    /// Directory of the session files.
    [[nodiscard]] std::filesystem::path file() const;

private:
    platform::Preferences& preferences_;
    platform::FileStore& files_;
    const platform::Directories& directories_;
    std::optional<HDCLUserModel> currentUserModel_;
};

}  // namespace halvane::session
