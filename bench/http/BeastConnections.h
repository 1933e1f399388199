#pragma once

#include "BeastConnection.h"
#include "Endpoint.h"
#include "HttpContestant.h"
#include "HttpQueue.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>

#include <deque>
#include <memory>
#include <thread>
#include <vector>

namespace halvane::bench {

/// Boost.Beast, asynchronous: five persistent connections on one thread.
class BeastConnections final : public HttpContestant {
public:
    explicit BeastConnections(const std::string& url);
    ~BeastConnections() override;
    BeastConnections(const BeastConnections&) = delete;
    BeastConnections& operator=(const BeastConnections&) = delete;

    void send(HttpExchange exchange, std::function<void(bool)> done) override;

private:
    struct Waiting {
        HttpExchange exchange;
        std::function<void(bool)> done;
    };

    void startWaiting();

    HttpQueue queue_;
    BeastConnection::Request get_;
    BeastConnection::Request post_;
    boost::asio::io_context context_{1};
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> work_ = boost::asio::make_work_guard(context_);
    std::vector<std::unique_ptr<BeastConnection>> connections_;
    std::vector<BeastConnection*> idle_;  // this and the next only on the thread
    std::deque<Waiting> waiting_;
    std::thread thread_;
};

}  // namespace halvane::bench
