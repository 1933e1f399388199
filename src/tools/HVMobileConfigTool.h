#pragma once

#include "tools/STPrivilegedTask.h"
#include "util/Bytes.h"

#include <functional>
#include <optional>
#include <string>

namespace halvane::device {
class HVDeviceInfoHelper;
}
namespace halvane::platform {
class Directories;
class FileStore;
class ProcessLauncher;
}  // namespace halvane::platform
namespace halvane::util {
class Log;
}

namespace halvane::tools {

/// Builds the user's network profile from the shipped template, installs and removes it. Any thread where nothing
/// else is said; the builder works synchronously on the caller's. An installation that was started goes on without it.
class HVMobileConfigTool {
public:
    struct Collaborators {
        platform::FileStore& files;
        const platform::Directories& directories;
        platform::ProcessLauncher& launcher;
        const device::HVDeviceInfoHelper& device;
        util::Log& log;
        STPrivilegedTask::Collaborators administrator;
    };

    explicit HVMobileConfigTool(Collaborators collaborators);

    /// Fills the first payload of the template, a resource given by its whole file name, and writes the
    /// profile, named after the payload's identifier, into "XMMBConfWeb" of the temporary directory.
    /// An absent or empty password becomes the default one, an absent or empty file name leaves the
    /// template's; the bytes are set always. Answers the path, or an empty text when the template is
    /// missing or unreadable or the profile cannot be written; an older profile then stays as it was.
    [[nodiscard]] std::string configFilePathWithTemplateFilePath(const std::string& templateName,
                                                                 const std::optional<std::string>& certificateFileName,
                                                                 const std::optional<std::string>& password,
                                                                 const util::Bytes& certificateData) const;

    /// Starts the profile tool and returns at once. When the tool ends, with whatever status, the
    /// company network is joined, on the thread that noticed the end. A tool that cannot be started is
    /// logged, and nothing is joined.
    void installMobileConfigFileWithFilePath(const std::string& path) const;

    /// Removes an installed profile, given by its file, with the administrator's rights. Main thread; blocks while the
    /// person is asked and until the tool has ended, except when the person dismissed the question.
    void removeMobileConfigFileWithName(const std::string& path) const;

private:
    Collaborators collaborators_;
};

}  // namespace halvane::tools
