#pragma once

#include "util/Error.h"

#include <string>
#include <utility>

namespace halvane::util {

/// Codes of the "halvane.update" domain: why a client was not updated. Those of the installation are the exit codes of
/// `install-update` too.
enum class UpdateError : int {
    FeedUnreachable = 1,
    FeedUnreadable = 2,  ///< signed, but no feed
    FeedSignature = 3,   ///< none, or not of our key
    FeedExpired = 4,
    FeedOlder = 5,    ///< than one that was seen: somebody holds back what is new
    OtherScheme = 6,  ///< redirected from http to https, or the other way

    PackageUnreachable = 10,
    PackageLonger = 11,  ///< than the feed says
    PackageShorter = 12,
    CannotSave = 13,  ///< in the user's cache

    PackageSignature = 20,  ///< none, or not of our key
    OtherPackage = 21,      ///< no package, or not the client's
    OtherArchitecture = 22,
    NotHigher = 23,  ///< than the version that is installed
    NoSpace = 24,    ///< in the administrator's directory
    CannotCopy = 25,
    Busy = 26,                ///< another installation runs
    InstallationFailed = 27,  ///< the package manager said no
    Interrupted = 28,         ///< killed, or ended without a word

    Dismissed = 30,   ///< the person did not authorise it
    NotAllowed = 31,  ///< the policy lets nobody here
    NoAuthority = 32  ///< nobody there who could ask
};

inline constexpr const char* kUpdateErrorDomain = "halvane.update";

inline Error updateError(UpdateError code, std::string description) {
    return {kUpdateErrorDomain, static_cast<int>(code), std::move(description)};
}

}  // namespace halvane::util
