#pragma once

#include "FileTransfer.h"

#include <curl/curl.h>

#include <stdexcept>

namespace halvane::bench {

/// The measure of the others: a form with a file, as libcurl streams it.
class CurlFormTransfer final : public FileTransfer {
public:
    bool download(const std::string& /*url*/, const std::filesystem::path& /*destination*/) override {
        throw std::logic_error("forms go up");
    }

    bool upload(const std::string& url, const std::filesystem::path& source) override {
        CURL* easy = curl_easy_init();
        curl_mime* form = curl_mime_init(easy);
        curl_mimepart* part = curl_mime_addpart(form);
        curl_mime_name(part, "file");
        curl_mime_filedata(part, source.c_str());
        curl_slist* headers = curl_slist_append(nullptr, "Expect:");
        curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(easy, CURLOPT_URL, url.c_str());
        curl_easy_setopt(easy, CURLOPT_HTTPHEADER, headers);
        curl_easy_setopt(easy, CURLOPT_UPLOAD_BUFFERSIZE, 512L * 1024);
        curl_easy_setopt(easy, CURLOPT_MIMEPOST, form);
        curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &ignore);
        const bool sent = curl_easy_perform(easy) == CURLE_OK;
        curl_easy_cleanup(easy);
        curl_mime_free(form);
        curl_slist_free_all(headers);
        return sent;
    }

private:
    static size_t ignore(char* /*data*/, size_t size, size_t count, void* /*nothing*/) { return size * count; }
};

}  // namespace halvane::bench
