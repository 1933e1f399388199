#pragma once

#include "server/api/Message.h"
#include "util/Value.h"

#include <string>

namespace halvane::server {

/// "code" of a reply. 200 is success; what is in the range of HTTP's codes means what it means there.
enum class ReplyCode : int {
    Ok = 200,
    SignedOut = 401,        ///< no session, or one that has ended
    NotAllowed = 403,       ///< a session, but of another user
    BadCredentials = 4001,  ///< user name or password
    TooManyTries = 4002,
    WrongCode = 4003,  ///< security code
    NoCode = 4004,     ///< none was asked for, or it is too old, used or tried too often
    UnknownWorkplace = 4005
};

/// Every JSON reply is {"code", "msg", "data"}; `msg` is for the employee, in Chinese.
struct Envelope {
    static ApiReply succeeded(const std::string& msg, util::Dictionary data = {});
    /// The server understood and says no: still HTTP 200, or the client could not read "msg".
    static ApiReply refused(ReplyCode code, const std::string& msg);
    static ApiReply signedOut();
    static ApiReply notAllowed();

    /// The HTTP status says it already and "code" repeats it; `reason` is for developers, in English.
    static ApiReply failed(int status, const std::string& reason);
    static ApiReply malformed(const std::string& reason) { return failed(400, reason); }
};

}  // namespace halvane::server
