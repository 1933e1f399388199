#pragma once

#include "server/api/Message.h"

namespace halvane::server {

/// What a browser or an image view fetches; needs no session. Any thread.
struct PagesApi {
    static constexpr const char* kAvatarPath = "/static/avatar/";  ///< "<user number>.svg" follows

    /// Says whom to ask for another password: the server has no page to change it.
    static ApiReply passwordPage();
    /// A picture in a colour of the user's own.
    static ApiReply avatar(const ApiRequest& request);
};

}  // namespace halvane::server
