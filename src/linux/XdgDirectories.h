#pragma once

#include "platform/Directories.h"
#include "util/Result.h"

#include <functional>
#include <optional>
#include <string>

namespace halvane::linux {

/// The user's directories by the XDG base directory rules: a variable that is not set, empty or not
/// an absolute path counts as absent.
class XdgDirectories final : public platform::Directories {
public:
    /// What the directories are found from.
    struct Surroundings {
        std::function<std::optional<std::string>(const char* name)> variable;
        std::optional<std::filesystem::path> accountHome;  ///< by the system's list of users
        std::filesystem::path sharedTemporary;             ///< where every user may write

        static Surroundings ofThisProcess();
    };

    /// Error: neither HOME nor the list of users names a home directory. Makes nothing, except the
    /// private directory under the shared temporary one when the session has no runtime directory.
    static util::Result<XdgDirectories> locate(std::filesystem::path resources,
                                               const Surroundings& surroundings = Surroundings::ofThisProcess());

    [[nodiscard]] std::filesystem::path documents() const override { return documents_; }
    [[nodiscard]] std::filesystem::path caches() const override { return caches_; }
    [[nodiscard]] std::filesystem::path temporary() const override { return temporary_; }
    [[nodiscard]] std::filesystem::path resources() const override { return resources_; }
    /// Where the preferences stand.
    [[nodiscard]] const std::filesystem::path& configuration() const { return configuration_; }

private:
    XdgDirectories() = default;

    std::filesystem::path documents_;
    std::filesystem::path caches_;
    std::filesystem::path temporary_;
    std::filesystem::path resources_;
    std::filesystem::path configuration_;
};

}  // namespace halvane::linux
