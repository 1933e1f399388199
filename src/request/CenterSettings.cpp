#include "request/CenterSettings.h"

#include "util/Url.h"

namespace halvane::request {

namespace {

bool isEmpty(const std::optional<std::string>& text) { return !text || text->empty(); }

void addTo(util::Dictionary& all, const util::Dictionary& further) {
    for (const auto& [key, value] : further) all.set(key, value);
}

void addTo(platform::HttpHeaders& all, const platform::HttpHeaders& further) {
    for (const auto& [name, value] : further.fields()) all.set(name, value);
}

/// `api` seen from `server`, whose path is a directory even without a slash at its end.
std::optional<std::string> addressOf(const std::optional<std::string>& server, const std::string& api) {
    if (isEmpty(server)) return api;
    return util::resolvedReference(util::withDirectoryPath(*server), api);
}

}  // namespace

void CenterSettings::take(const XMConfig& config) {
    consoleLog = config.consoleLog;
    if (config.generalServer) generalServer = config.generalServer;
    addTo(generalParameters, config.generalParameters);
    addTo(generalHeaders, config.generalHeaders);
    if (config.callbackQueue) callbackQueue = config.callbackQueue;
    if (config.generalUserInfo) generalUserInfo = config.generalUserInfo;
    if (config.engine) engine = config.engine;
}

void CenterSettings::fillIn(XMRequest& request) const {
    if (!request.userInfo) request.userInfo = generalUserInfo;
    if (request.useGeneralParameters && !generalParameters.empty()) {
        util::Dictionary merged = generalParameters;
        if (request.parameters) addTo(merged, *request.parameters);
        request.parameters = std::move(merged);
    }
    if (request.useGeneralHeaders && !generalHeaders.fields().empty()) {
        platform::HttpHeaders merged = generalHeaders;
        addTo(merged, request.headers);
        request.headers = std::move(merged);
    }
    if (!isEmpty(request.url)) return;
    if (isEmpty(request.server) && request.useGeneralServer && !isEmpty(generalServer)) request.server = generalServer;
    request.url = isEmpty(request.api) ? request.server : addressOf(request.server, *request.api);
}

}  // namespace halvane::request
