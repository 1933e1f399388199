#pragma once

#include "util/Bytes.h"
#include "util/Result.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace halvane::platform {

/// 0, or why something was not authorised or not executed.
using OSStatus = std::int32_t;
inline constexpr OSStatus kAuthorizationSuccess = 0;
inline constexpr OSStatus kAuthorizationDenied = -60005;              ///< refused, or nobody could be asked
inline constexpr OSStatus kAuthorizationCanceled = -60006;            ///< the person dismissed the question
inline constexpr OSStatus kAuthorizationToolExecuteFailure = -60031;  ///< allowed or not, the program cannot be executed
inline constexpr OSStatus kAuthorizationNotAvailable = -70001;        ///< nothing on this system could authorise

/// What `copyRights` may do.
inline constexpr std::uint32_t kAuthorizationInteractionAllowed = 1;
inline constexpr std::uint32_t kAuthorizationExtendRights = 2;
inline constexpr std::uint32_t kAuthorizationPreAuthorize = 16;

/// Stands for one authorisation; belongs to whoever created it.
using AuthorizationRef = std::uint64_t;

struct AuthorizationRight {
    std::string name;
    std::string value;
    std::uint32_t flags = 0;
};

/// The read end of a child's output. Closes its descriptor with it.
class OutputFileHandle {
public:
    virtual ~OutputFileHandle() = default;
    [[nodiscard]] virtual int fileDescriptor() const = 0;
    /// What the child writes until it closes its end. Blocks.
    virtual util::Result<util::Bytes> readDataToEndOfFile() = 0;
};

/// Asks the person for the administrator's rights and runs programs with them. Calls block for as long as the person
/// is asked. Any thread.
class AuthorizationServices {
public:
    struct Created {
        OSStatus status = kAuthorizationSuccess;
        AuthorizationRef authorization = 0;
    };
    struct Execution {
        OSStatus status = kAuthorizationSuccess;
        std::int32_t processIdentifier = -1;
        std::shared_ptr<OutputFileHandle> output;  ///< null unless the program was started
    };
    struct Tool {
        std::string path;  ///< absolute
        std::vector<std::string> arguments;
        std::string workingDirectory;  ///< one that cannot be entered: the caller's own
    };

    virtual ~AuthorizationServices() = default;

    /// Whether `executeWithPrivileges` can work at all on this system. Found out once.
    [[nodiscard]] virtual bool canExecuteWithPrivileges() const = 0;

    /// An authorisation without rights.
    virtual Created create() = 0;
    virtual OSStatus copyRights(AuthorizationRef authorization, const std::vector<AuthorizationRight>& rights, std::uint32_t flags) = 0;
    virtual void free(AuthorizationRef authorization) = 0;

    /// Starts the program as the administrator, with its standard output in a pipe. Its end is for the caller to collect.
    virtual Execution executeWithPrivileges(AuthorizationRef authorization, const Tool& tool) = 0;
    /// Never blocks. Absent while the child runs; else its wait status, 0 when somebody else has collected it.
    virtual std::optional<int> collect(std::int32_t processIdentifier) = 0;
};

}  // namespace halvane::platform
