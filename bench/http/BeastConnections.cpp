#include "BeastConnections.h"

#include <boost/asio/post.hpp>

#include <utility>

namespace halvane::bench {

namespace http = boost::beast::http;

BeastConnections::BeastConnections(const std::string& url) {
    const Endpoint server(url);
    get_ = {http::verb::get, server.path, 11};
    get_.set(http::field::host, server.host);
    post_ = {http::verb::post, server.path, 11};
    post_.set(http::field::host, server.host);
    post_.set(http::field::content_type, "application/json; charset=utf-8");
    post_.body() = postedJson();
    post_.prepare_payload();
    constexpr int kConnections = 5;
    for (int i = 0; i < kConnections; ++i) {
        connections_.push_back(std::make_unique<BeastConnection>(context_, server));
        idle_.push_back(connections_.back().get());
    }
    thread_ = std::thread([this] { context_.run(); });
}

BeastConnections::~BeastConnections() {
    context_.stop();
    thread_.join();
}

void BeastConnections::send(HttpExchange exchange, std::function<void(bool)> done) {
    boost::asio::post(context_, [this, exchange, done = std::move(done)]() mutable {
        waiting_.push_back({exchange, std::move(done)});
        startWaiting();
    });
}

void BeastConnections::startWaiting() {
    while (!idle_.empty() && !waiting_.empty()) {
        BeastConnection* connection = idle_.back();
        idle_.pop_back();
        Waiting request = std::move(waiting_.front());
        waiting_.pop_front();
        connection->exchange(request.exchange == HttpExchange::Post ? post_ : get_,
                             [this, connection, done = std::move(request.done)](bool whole, std::string body) mutable {
                                 idle_.push_back(connection);
                                 queue_.async([done = std::move(done), whole, body = std::move(body)] { done(whole && !body.empty()); });
                                 startWaiting();
                             });
    }
}

}  // namespace halvane::bench
