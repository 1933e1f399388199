#include "request/factory/RequestLayer.h"

#include "linux/base/AsioDispatchQueues.h"
#include "linux/base/NetworkManagerReachability.h"
#include "linux/base/SystemLog.h"
#include "linux/http/CurlTransport.h"
#include "request/XMEngine.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdlib>
#include <utility>

namespace halvane::request {

namespace {

/// What lives and ends together: the monitor tells its handler on a queue.
struct Threads {
    explicit Threads(unsigned count) : queues(count) {}

    linux::AsioDispatchQueues queues;
    std::shared_ptr<platform::DispatchQueue> completion = queues.makeConcurrent(kCompletionQueueName);
    std::shared_ptr<platform::DispatchQueue> background = queues.makeConcurrent("com.halvane.request.background.queue");
    std::shared_ptr<platform::DispatchQueue> handlers = queues.makeSerial("com.halvane.request.reachability.queue");
    linux::NetworkManagerReachability reachability{*handlers};
};

/// Posts to the completion queue; what waits there keeps this queue and the threads alive. So the results of an engine's
/// last requests arrive when nobody holds engine or environment any more.
class LastingQueue final : public platform::DispatchQueue, public std::enable_shared_from_this<LastingQueue> {
public:
    explicit LastingQueue(std::shared_ptr<Threads> threads) : threads_(std::move(threads)) {}
    void async(Block block) override {
        threads_->completion->async([self = shared_from_this(), block = std::move(block)] { block(); });
    }
    void after(std::chrono::milliseconds delay, Block block) override { threads_->completion->after(delay, std::move(block)); }

private:
    const std::shared_ptr<Threads> threads_;
};

std::string programName(const std::string& given) { return given.empty() ? fmt::format("{}/1.0", ::program_invocation_short_name) : given; }

/// "de_DE.UTF-8" as "de-DE"; the portable locales have no language.
std::string languageOf(const std::string& locale) {
    std::string tag = locale.substr(0, locale.find_first_of(".@"));
    for (char& c : tag) c = c == '_' ? '-' : c;
    return tag == "C" || tag == "POSIX" ? std::string() : tag;
}

std::vector<std::string> languagesOfProcess() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* locale = std::getenv(variable);
        if (locale == nullptr || *locale == '\0') continue;
        std::string tag = languageOf(locale);
        if (tag.empty()) break;
        return {std::move(tag)};
    }
    return {"en"};
}

/// Each a tenth less wanted than the one before it; nobody reads beyond the sixth.
std::string acceptLanguage(const std::vector<std::string>& languages) {
    constexpr std::size_t kMost = 6;
    std::string field;
    for (std::size_t i = 0; i < languages.size() && i < kMost; ++i) {
        const std::string weight = i == 0 ? "1" : fmt::format("0.{}", 10 - i);
        field += fmt::format("{}{};q={}", i == 0 ? "" : ", ", languages[i], weight);
    }
    return field;
}

}  // namespace

RequestEnvironment RequestLayer::makeEnvironment(const Options& options) {
    const auto threads = std::make_shared<Threads>(options.threads == 0 ? linux::AsioDispatchQueues::usualThreadCount() : options.threads);
    const std::string agent = programName(options.programName);
    RequestEnvironment environment{.transport = std::make_shared<linux_http::CurlTransport>(options.largestBody),
                                   .completionQueue = std::make_shared<LastingQueue>(threads),
                                   .backgroundQueue = {threads, threads->background.get()},
                                   .reachability = {threads, &threads->reachability},
                                   .log = options.log};
    if (!environment.log)
        environment.log = std::make_shared<linux::SystemLog>(linux::SystemLog::Journal::ofThisProcess(), agent.substr(0, agent.find('/')));
    environment.defaultHeaders.set("Accept-Language", acceptLanguage(options.languages.empty() ? languagesOfProcess() : options.languages));
    environment.defaultHeaders.set("User-Agent", agent);
    XMEngine::load(*environment.reachability);
    return environment;
}

void RequestLayer::start(const Options& options) { RequestEnvironment::setShared(makeEnvironment(options)); }

}  // namespace halvane::request
