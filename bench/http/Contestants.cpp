#include "Contestants.h"

#include "BeastConnections.h"
#include "HttpClient.h"
#include "HttplibThreads.h"
#include "PlainCurl.h"
#include "QtManager.h"
#include "TransportSession.h"

namespace halvane::bench {

namespace {

template <class Contestant>
SmallContestant small(std::string name) {
    return {std::move(name), [](const std::string& url) { return std::make_unique<Contestant>(url); }};
}

}  // namespace

std::vector<SmallContestant> smallContestants() {
    return {
        small<PlainCurl>("plain libcurl"),    small<TransportSession>("transport session"), small<HttpClient>("HTTP client"),
        small<HttplibThreads>("cpp-httplib"), small<BeastConnections>("Boost.Beast"),       small<QtManager>("Qt network manager"),
    };
}

}  // namespace halvane::bench
