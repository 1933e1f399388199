#include "BeastConnection.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/write.hpp>

#include <utility>

namespace halvane::bench {

namespace asio = boost::asio;
namespace http = boost::beast::http;

BeastConnection::BeastConnection(asio::io_context& context, const Endpoint& server) : stream_(context) {
    stream_.connect(asio::ip::tcp::endpoint(asio::ip::make_address(server.host), server.port));
    stream_.socket().set_option(asio::ip::tcp::no_delay(true));
}

void BeastConnection::exchange(const Request& request, Done done) {
    done_ = std::move(done);
    http::async_write(stream_, request, [this](const boost::system::error_code& error, std::size_t) {
        if (error) {
            std::exchange(done_, nullptr)(false, {});
        } else {
            read();
        }
    });
}

void BeastConnection::read() {
    response_ = {};
    http::async_read(stream_, buffer_, response_, [this](const boost::system::error_code& error, std::size_t) {
        std::exchange(done_, nullptr)(!error, std::move(response_.body()));
    });
}

}  // namespace halvane::bench
