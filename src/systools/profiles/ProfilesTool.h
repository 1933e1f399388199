#pragma once

#include "systools/CallingUser.h"
#include "systools/Tool.h"
#include "systools/profiles/ProfileInstaller.h"

#include <optional>

namespace halvane::systools {

/// The commands of `profiles`: install, remove. Keeps no state between runs.
class ProfilesTool {
public:
    /// `files` must outlive it.
    ProfilesTool(ProfileInstaller installer, platform::FileStore& files, CallingUser user)
        : installer_(std::move(installer)), files_(files), user_(std::move(user)) {}

    int run(const Arguments& arguments, std::ostream& out, std::ostream& err);
    static const char* usageText();

private:
    util::Result<ConfigurationProfile> read(const std::string& path) const;
    int install(const std::string& path, std::ostream& out, std::ostream& err);
    int remove(const std::string& identifier, std::ostream& out, std::ostream& err);

    ProfileInstaller installer_;
    platform::FileStore& files_;
    const CallingUser user_;
};

}  // namespace halvane::systools
