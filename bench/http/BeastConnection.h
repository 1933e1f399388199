#pragma once

#include "Endpoint.h"

#include <boost/asio/io_context.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/string_body.hpp>

#include <functional>
#include <string>

namespace halvane::bench {

/// One persistent connection of Boost.Beast. Lives on the context's thread, one exchange at a time.
class BeastConnection {
public:
    using Request = boost::beast::http::request<boost::beast::http::string_body>;
    using Done = std::function<void(bool whole, std::string body)>;

    BeastConnection(boost::asio::io_context& context, const Endpoint& server);

    /// `request` stays until `done` has been called.
    void exchange(const Request& request, Done done);

private:
    void read();

    boost::beast::tcp_stream stream_;
    boost::beast::flat_buffer buffer_;
    boost::beast::http::response<boost::beast::http::string_body> response_;
    Done done_;
};

}  // namespace halvane::bench
