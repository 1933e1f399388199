#include "HttplibFileTransfer.h"

#include "Endpoint.h"
#include "RawFile.h"

#include <httplib.h>

#include <algorithm>
#include <vector>

namespace halvane::bench {

bool HttplibFileTransfer::download(const std::string& url, const std::filesystem::path& destination) {
    const Endpoint server(url);
    httplib::Client client(server.host, server.port);
    RawFile file(destination, RawFile::Use::Write);
    const auto result = client.Get(server.path, [&](const char* data, std::size_t size) { return file.write(data, size); });
    return result && result->status == 200;
}

bool HttplibFileTransfer::upload(const std::string& url, const std::filesystem::path& source) {
    const Endpoint server(url);
    httplib::Client client(server.host, server.port);
    RawFile file(source, RawFile::Use::Read);
    std::vector<char> buffer(512UL * 1024);
    const auto provide = [&](std::size_t /*offset*/, std::size_t length, httplib::DataSink& sink) {
        const auto count = file.read(buffer.data(), std::min(length, buffer.size()));
        return count && *count > 0 && sink.write(buffer.data(), *count);
    };
    const auto result = client.Put(server.path, file.size(), provide, "application/octet-stream");
    return result && result->status / 100 == 2;
}

}  // namespace halvane::bench
