#include "BeastFileTransfer.h"

#include "Endpoint.h"
#include "RawFile.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/buffer_body.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/file_body.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/string_body.hpp>
#include <boost/beast/http/write.hpp>

#include <cstdint>
#include <limits>
#include <vector>

namespace halvane::bench {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;

namespace {

void connect(beast::tcp_stream& stream, const Endpoint& server) {
    stream.connect(asio::ip::tcp::endpoint(asio::ip::make_address(server.host), server.port));
}

}  // namespace

bool BeastFileTransfer::download(const std::string& url, const std::filesystem::path& destination) {
    const Endpoint server(url);
    asio::io_context context;
    beast::tcp_stream stream(context);
    connect(stream, server);
    http::request<http::empty_body> request{http::verb::get, server.path, 11};
    request.set(http::field::host, server.host);
    http::write(stream, request);

    http::response_parser<http::file_body> parser;
    parser.body_limit(std::numeric_limits<std::uint64_t>::max());  // it compares lengths with no limit too, and finds them above
    boost::system::error_code error;
    parser.get().body().open(destination.c_str(), beast::file_mode::write, error);
    beast::flat_buffer buffer;
    buffer.reserve(256UL * 1024);  // it reads as much as has room already
    if (error) return false;
    http::read(stream, buffer, parser);
    return parser.get().result() == http::status::ok;
}

bool BeastFileTransfer::upload(const std::string& url, const std::filesystem::path& source) {
    const Endpoint server(url);
    asio::io_context context;
    beast::tcp_stream stream(context);
    connect(stream, server);
    RawFile file(source, RawFile::Use::Read);
    http::request<http::buffer_body> request{http::verb::put, server.path, 11};
    request.set(http::field::host, server.host);
    request.content_length(file.size());
    http::request_serializer<http::buffer_body> serializer(request);
    http::write_header(stream, serializer);
    std::vector<char> bytes(512UL * 1024);
    while (!serializer.is_done()) {
        const auto count = file.read(bytes.data(), bytes.size());
        if (!count) return false;
        auto& body = request.body();
        body.data = *count > 0 ? bytes.data() : nullptr;
        body.size = *count;
        body.more = *count > 0;
        boost::system::error_code error;
        http::write(stream, serializer, error);
        if (error && error != http::error::need_buffer) throw boost::system::system_error(error);
    }
    beast::flat_buffer buffer;
    http::response<http::string_body> response;
    http::read(stream, buffer, response);
    return http::to_status_class(response.result()) == http::status_class::successful;
}

}  // namespace halvane::bench
