#pragma once

#include "server/api/Message.h"

#include <string>

namespace halvane::server {

class Company;

/// Updates of the client, for whoever asks: they are signed, and a client that cannot sign in any more needs them most.
/// Any thread.
class UpdateApi {
public:
    static constexpr const char* kFilesPath = "/update/";  ///< a package's file name follows
    static constexpr const char* kFeedPath = "/update/appcast.xml";

    UpdateApi(Company& company, const std::string& baseUrl) : company_(company), filesUrl_(baseUrl + kFilesPath) {}

    /// Made and signed anew for each request, so that it is never close to its end.
    ApiReply feed();
    ApiReply download(const ApiRequest& request);

private:
    Company& company_;
    const std::string filesUrl_;
};

}  // namespace halvane::server
