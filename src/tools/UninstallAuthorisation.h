#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace halvane::device {
class HVDeviceInfoHelper;
}
namespace halvane::platform {
class DispatchQueue;
}
namespace halvane::service {
class HVRequstHelper;
}
namespace halvane::session {
class HDCLUserConfig;
}
namespace halvane::util {
class Dictionary;
class Value;
}  // namespace halvane::util

namespace halvane::tools {

/// The company's leave to remove this client: a security code is asked for, arrives by another way, and is
/// shown to the server, which alone judges it. Nothing is removed here.
///
/// Main thread, where each call is answered at most once, and not inside it unless said so. Every press is
/// a request of its own, and requests go out in the order of the presses. The facts of this computer come from
/// tools that may take seconds, so they are read on `toolQueue`; `device` must outlive what waits there.
/// After this object is destroyed, which an answer may do, nothing more is sent and nothing is answered.
class UninstallAuthorisation {
public:
    struct Reply {
        enum class Kind { CodeSent, Refused, Authorised };
        Kind kind;
        std::string tip;  ///< for the person
        friend bool operator==(const Reply&, const Reply&) = default;
    };
    using Answer = std::function<void(const Reply&)>;

    struct Collaborators {
        platform::DispatchQueue& toolQueue;  ///< serial
        std::shared_ptr<platform::DispatchQueue> mainQueue;
        session::HDCLUserConfig& user;
        service::HVRequstHelper& requests;
        const device::HVDeviceInfoHelper& device;
    };

    explicit UninstallAuthorisation(Collaborators collaborators);
    ~UninstallAuthorisation();
    UninstallAuthorisation(const UninstallAuthorisation&) = delete;
    UninstallAuthorisation& operator=(const UninstallAuthorisation&) = delete;

    /// Has a code sent to the employee. CodeSent; silence when the server refuses or cannot be reached.
    void applyVertifyCode(Answer answer);

    /// Refused, inside the call, for an empty code. Otherwise the server's verdict: Authorised, or Refused with
    /// its message; silence when it cannot be reached.
    void verify(const std::string& code, Answer answer);

private:
    using Facts = std::function<util::Dictionary(const device::HVDeviceInfoHelper&)>;
    using Send = std::function<void(const util::Dictionary& params)>;
    using OnReply = std::function<void(const util::Value& response)>;
    using Reading = std::optional<Reply> (*)(const util::Value& response);

    /// Gathers the parameters on the tool queue and sends them from the main queue.
    void gather(Facts facts, Send send);
    /// Answers with what `reading` makes of a reply, unless this object is gone by then.
    [[nodiscard]] OnReply answering(Reading reading, Answer answer) const;
    /// The signed-in user's name without the mail domain; empty when nobody is signed in.
    [[nodiscard]] std::string userName() const;

    Collaborators to_;
    std::shared_ptr<const bool> alive_;
};

}  // namespace halvane::tools
