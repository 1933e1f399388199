#include "request/XMDefaultCenter.h"
#include "request/factory/RequestLayer.h"
#include "util/Value.h"

#include <cstdio>
#include <future>
#include <string>

/// foreign URL: says what field "name" of the JSON there is.
int main(int /*argc*/, char** argv) {
    using namespace halvane::request;
    RequestLayer::start({.programName = "foreign/1.0", .languages = {"de-DE", "en"}});
    XMDefaultCenter::setupConfig([argv](XMConfig& config) { config.generalServer = argv[1]; });
    std::promise<std::string> said;
    XMDefaultCenter::sendRequest(
        [](XMRequest& request) {
            request.api = "who";
            request.httpMethod = XMHTTPMethodGET;
        },
        {.onFinished = [&said](const Response& response, const Failure& failure) {
            said.set_value(failure ? failure->description
                                   : halvane::util::textOf(halvane::util::member(response->value(), "name")).value_or("nobody"));
        }});
    std::printf("%s, %s\n", said.get_future().get().c_str(), XMDefaultCenter::isNetworkReachable() ? "reachable" : "not reachable");
    return 0;
}
