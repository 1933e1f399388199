#include "CurlFileTransfer.h"

#include "RawFile.h"

namespace halvane::bench {

namespace {

size_t writeToFile(char* data, size_t size, size_t count, void* file) {
    return static_cast<RawFile*>(file)->write(data, size * count) ? size * count : 0;
}

size_t readFromFile(char* buffer, size_t size, size_t count, void* file) {
    return static_cast<RawFile*>(file)->read(buffer, size * count).value_or(CURL_READFUNC_ABORT);
}

}  // namespace

CurlFileTransfer::CurlFileTransfer() : easy_(curl_easy_init()), headers_(curl_slist_append(nullptr, "Expect:")) {
    curl_easy_setopt(easy_, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy_, CURLOPT_FAILONERROR, 1L);
}

CurlFileTransfer::~CurlFileTransfer() {
    curl_easy_cleanup(easy_);
    curl_slist_free_all(headers_);
}

bool CurlFileTransfer::download(const std::string& url, const std::filesystem::path& destination) {
    RawFile file(destination, RawFile::Use::Write);
    curl_easy_setopt(easy_, CURLOPT_BUFFERSIZE, 256L * 1024);
    curl_easy_setopt(easy_, CURLOPT_WRITEFUNCTION, &writeToFile);
    curl_easy_setopt(easy_, CURLOPT_WRITEDATA, &file);
    return perform(url);
}

bool CurlFileTransfer::upload(const std::string& url, const std::filesystem::path& source) {
    RawFile file(source, RawFile::Use::Read);
    curl_easy_setopt(easy_, CURLOPT_UPLOAD, 1L);
    curl_easy_setopt(easy_, CURLOPT_UPLOAD_BUFFERSIZE, 512L * 1024);
    curl_easy_setopt(easy_, CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(file.size()));
    curl_easy_setopt(easy_, CURLOPT_READFUNCTION, &readFromFile);
    curl_easy_setopt(easy_, CURLOPT_READDATA, &file);
    curl_easy_setopt(easy_, CURLOPT_HTTPHEADER, headers_);
    return perform(url);
}

bool CurlFileTransfer::perform(const std::string& url) {
    curl_easy_setopt(easy_, CURLOPT_URL, url.c_str());
    return curl_easy_perform(easy_) == CURLE_OK;
}

}  // namespace halvane::bench
