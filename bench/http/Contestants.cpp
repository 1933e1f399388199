#include "Contestants.h"

#include "BeastConnections.h"
#include "BeastFileTransfer.h"
#include "CurlFileTransfer.h"
#include "CurlFormTransfer.h"
#include "HttpClient.h"
#include "HttplibFileTransfer.h"
#include "HttplibThreads.h"
#include "PlainCurl.h"
#include "QtFileTransfer.h"
#include "QtManager.h"
#include "QueuedCenterRequests.h"
#include "QueuedTasks.h"
#include "RequestCenter.h"
#include "RequestLayerTransfer.h"
#include "TransportFileTransfer.h"
#include "TransportSession.h"

namespace halvane::bench {

namespace {

template <class Contestant>
SmallContestant small(std::string name) {
    return {std::move(name), [](const std::string& url) { return std::make_unique<Contestant>(url); }};
}

template <class Transfer>
LargeContestant large(std::string name) {
    return {std::move(name), [] { return std::make_unique<Transfer>(); }};
}

template <class Queue>
QueueContestant queued(std::string name) {
    return {std::move(name), [](const std::string& url, int count) { return std::make_shared<Queue>(url, count); }};
}

}  // namespace

std::vector<SmallContestant> smallContestants() {
    return {
        small<PlainCurl>("plain libcurl"),      small<TransportSession>("transport session"),
        small<RequestCenter>("request center"), small<RequestLayerCenter>("request layer"),
        small<HttpClient>("HTTP client"),       small<HttplibThreads>("cpp-httplib"),
        small<BeastConnections>("Boost.Beast"), small<QtManager>("Qt network manager"),
    };
}

std::vector<LargeContestant> largeContestants(TransferDirection direction) {
    if (direction == TransferDirection::Form) {
        return {large<CurlFormTransfer>("plain libcurl"), large<RequestLayerTransfer>("request layer")};
    }
    std::vector<LargeContestant> all = {
        large<CurlFileTransfer>("plain libcurl"),    large<TransportFileTransfer>("transport session"),
        large<HttplibFileTransfer>("cpp-httplib"),   large<BeastFileTransfer>("Boost.Beast"),
        large<QtFileTransfer>("Qt network manager"),
    };
    if (direction == TransferDirection::Download) all.insert(all.begin() + 2, large<RequestLayerTransfer>("request layer"));
    return all;
}

std::vector<QueueContestant> queueContestants() {
    return {queued<QueuedTasks>("transport session"), queued<QueuedCenterRequests>("request center")};
}

}  // namespace halvane::bench
