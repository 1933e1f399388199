#pragma once

#include "request/RequestEnvironment.h"

#include <string>
#include <vector>

namespace halvane::request {

/// Puts the request layer together for a program that has nothing else of ours: transport, queues, reachability, log.
///
///     int main() {
///         RequestLayer::start({.programName = "inventory/2.1"});
///         XMDefaultCenter::sendRequest(…);
class RequestLayer {
public:
    struct Options {
        /// Sent as "User-Agent", its part before the slash stands at the head of log lines. Empty: the running program's name.
        std::string programName;
        /// Sent as "Accept-Language", best first. Empty: those of the process's locale.
        std::vector<std::string> languages;
        /// For the console log; null: the system's log and standard error.
        std::shared_ptr<util::Log> log;
        /// On which results arrive and retries wait. 0: as many as there are processors, at least 4.
        unsigned threads = 0;
        /// The body of a request that is no download stands in memory; a larger one than this fails it. Bytes.
        std::uint64_t largestBody = std::uint64_t{256} << 20;
    };

    RequestLayer() = delete;

    /// Makes the environment of the process. Once, before any use of the shared engine
    /// or the default center; it lasts as long as the process.
    static void start(const Options& options);

    /// An environment of one's own, for `XMEngine` and `XMCenter::center`, its reachability monitor started: it ends with the
    /// last of them and of their results.
    static RequestEnvironment makeEnvironment(const Options& options);
};

}  // namespace halvane::request
