#pragma once

#include "util/Result.h"

#include <filesystem>
#include <functional>
#include <string>

namespace halvane::platform {

/// Installs a package of ours over the running client, as the administrator. Main thread, where the end is told, once, after
/// `install` has returned; a new one begins when the last one has ended. Destroying it lets what was begun go on to its end, unless
/// the administrator's word is still awaited: then nothing happens.
class PackageInstaller {
public:
    using Ended = std::function<void(const util::Result<void>&)>;

    virtual ~PackageInstaller() = default;
    /// Asks the person for the administrator's authorisation, and waits as long as the package manager takes. `signature`,
    /// base64, is verified once more where nobody but the administrator can change the bytes. Errors: `util::UpdateError`.
    virtual void install(const std::filesystem::path& package, const std::string& signature, Ended onEnd) = 0;
};

}  // namespace halvane::platform
