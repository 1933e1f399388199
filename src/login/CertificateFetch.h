#pragma once

#include "util/Value.h"

#include <memory>
#include <optional>
#include <string>

namespace halvane::platform {
class DispatchQueue;
class FileStore;
}  // namespace halvane::platform
namespace halvane::util {
class Log;
}
namespace halvane::session {
class HDCLUserConfig;
}
namespace halvane::service {
class HVRequstHelper;
}
namespace halvane::device {
class HVDeviceInfoHelper;
}
namespace halvane::tools {
class HVMobileConfigTool;
}

namespace halvane::login {

/// Fetches the user's personal certificate and installs it: certificate information, download, import
/// into the certificate store, network profile. Goes on in the background of a login; failures are
/// logged, never shown. Nothing is installed for somebody whose
/// session, that of the information's reply, has ended meanwhile. Main thread; the import and the profile are made on
/// `toolQueue`, because the tools may make their caller wait. The collaborators must outlive replies and what waits on that queue; this
/// object need not.
class CertificateFetch {
public:
    struct Collaborators {
        platform::DispatchQueue& toolQueue;  ///< serial
        platform::FileStore& files;
        util::Log& log;
        session::HDCLUserConfig& user;
        service::HVRequstHelper& requests;
        device::HVDeviceInfoHelper& device;
        tools::HVMobileConfigTool& profiles;
    };

    explicit CertificateFetch(Collaborators collaborators);

    /// `userName`: without the mail domain; it names the certificate in the profile.
    void requestCertificateWithUserName(const std::string& userName, const std::string& passWord);

private:
    /// The token of who is signed in.
    static std::optional<std::string> sessionOf(const Collaborators& to);
    static void downloadP12WithUrl(const Collaborators& to, const std::string& url, const std::optional<std::string>& password,
                                   const std::string& certificateFileName);
    static void install(const Collaborators& to, const std::string& fileUrl, const std::optional<std::string>& password,
                        const std::string& certificateFileName);

    Collaborators to_;
};

}  // namespace halvane::login
