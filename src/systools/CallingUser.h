#pragma once

#include "util/Result.h"

#include <sys/types.h>

#include <filesystem>
#include <string>

namespace halvane::systools {

/// For whom a program works: who started it, also through pkexec, which runs it as the administrator.
class CallingUser {
public:
    /// Error: the user has no entry among the system's users.
    static util::Result<CallingUser> find();

    [[nodiscard]] const std::string& name() const { return name_; }
    [[nodiscard]] const std::filesystem::path& home() const { return home_; }
    [[nodiscard]] bool isBehindAdministrator() const { return behindAdministrator_; }

    /// Runs `work` with that user's rights and no more: paths that the user chose must not open the administrator's
    /// doors. For the whole process, so one thread.
    template <typename Work>
    auto asThatUser(Work work) const {
        const Rights rights(*this);
        return work();
    }

private:
    /// Gives up the administrator's rights while it lives. Throws std::system_error where that fails.
    class Rights {
    public:
        explicit Rights(const CallingUser& user);
        ~Rights();
        Rights(const Rights&) = delete;
        Rights& operator=(const Rights&) = delete;

    private:
        const bool given_;
    };

    uid_t uid_ = 0;
    gid_t gid_ = 0;
    std::string name_;
    std::filesystem::path home_;
    bool behindAdministrator_ = false;
};

}  // namespace halvane::systools
