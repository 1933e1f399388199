#pragma once

#include "FileTransfer.h"

#include <curl/curl.h>

namespace halvane::bench {

/// The measure of the others: plain libcurl with buffers of a size for large bodies.
class CurlFileTransfer final : public FileTransfer {
public:
    CurlFileTransfer();
    ~CurlFileTransfer() override;
    CurlFileTransfer(const CurlFileTransfer&) = delete;
    CurlFileTransfer& operator=(const CurlFileTransfer&) = delete;

    bool download(const std::string& url, const std::filesystem::path& destination) override;
    bool upload(const std::string& url, const std::filesystem::path& source) override;

private:
    [[nodiscard]] bool perform(const std::string& url);

    CURL* easy_;
    curl_slist* headers_;
};

}  // namespace halvane::bench
