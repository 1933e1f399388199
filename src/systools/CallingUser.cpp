#include "systools/CallingUser.h"

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <system_error>

namespace halvane::systools {

namespace {

/// Whom pkexec says that it works for. Only believed where we are the administrator: others could say anything, and
/// gain nothing by it.
std::optional<uid_t> callerOfPkexec() {
    const char* text = ::geteuid() == 0 ? std::getenv("PKEXEC_UID") : nullptr;
    if (text == nullptr) return std::nullopt;
    uid_t uid = 0;
    const auto* end = text + std::strlen(text);
    const auto [stopped, problem] = std::from_chars(text, end, uid);
    return problem == std::errc() && stopped == end ? std::optional(uid) : std::nullopt;
}

void require(int answer) {
    if (answer != 0) throw std::system_error(errno, std::generic_category(), "change the user");
}

}  // namespace

util::Result<CallingUser> CallingUser::find() {
    const auto caller = callerOfPkexec();
    CallingUser user;
    user.uid_ = caller.value_or(::geteuid());
    const passwd* account = ::getpwuid(user.uid_);
    if (account == nullptr) return util::fileError(ENOENT, "find the user " + std::to_string(user.uid_));
    user.gid_ = account->pw_gid;
    user.name_ = account->pw_name;
    user.home_ = account->pw_dir;
    user.behindAdministrator_ = caller && *caller != 0;
    return user;
}

CallingUser::Rights::Rights(const CallingUser& user) : given_(user.behindAdministrator_) {
    if (!given_) return;
    require(::initgroups(user.name_.c_str(), user.gid_));
    require(::setegid(user.gid_));
    require(::seteuid(user.uid_));
}

CallingUser::Rights::~Rights() {
    if (!given_) return;
    // Going on with a mixture of both users' rights is the one thing that must not happen.
    if (::seteuid(0) != 0 || ::setegid(0) != 0 || ::setgroups(0, nullptr) != 0) std::abort();
}

}  // namespace halvane::systools
