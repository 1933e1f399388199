#pragma once

#include "FileTransfer.h"
#include "HttpQueue.h"
#include "linux/http/CurlTransport.h"

#include <future>
#include <memory>

namespace halvane::bench {

/// A session of our transport: a download task, and a data task with a stream.
class TransportFileTransfer final : public FileTransfer {
public:
    bool download(const std::string& url, const std::filesystem::path& destination) override {
        std::promise<bool> ended;
        session_
            ->downloadTask({.url = url},
                           {.destination = [&](const platform::HttpResponse&) { return destination; },
                            .onCompletion = [&](const platform::HttpDownloadResult& result) { ended.set_value(result.file.has_value()); }})
            ->resume();
        return ended.get_future().get();
    }

    bool upload(const std::string& url, const std::filesystem::path& source) override {
        std::promise<bool> ended;
        session_
            ->dataTask(
                {.method = "PUT", .url = url, .bodyStream = *linux_http::CurlTransport().fileBody(source)},
                {.onCompletion =
                     [&](const platform::HttpDataResult& result) { ended.set_value(!result.error && result.response->isSuccess()); }})
            ->resume();
        return ended.get_future().get();
    }

private:
    const std::shared_ptr<HttpQueue> queue_ = std::make_shared<HttpQueue>();
    const std::shared_ptr<platform::HttpSession> session_ = linux_http::CurlTransport().makeSession({.resultQueue = queue_});
};

}  // namespace halvane::bench
