#pragma once

#include "platform/HttpMessage.h"

#include <curl/curl.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace halvane::linux_http {

/// Receives what libcurl has to say about one handle. Network thread.
class EasyEvents {
public:
    virtual ~EasyEvents() = default;
    /// Each answers whether to go on.
    virtual bool onHeaderLine(std::string_view line) = 0;
    virtual bool onBody(std::string_view bytes) = 0;
    virtual void onUploaded(std::uint64_t bytes) = 0;
    /// Fills the buffer with what is to be sent next; absent when that failed.
    virtual std::optional<std::size_t> onReadBody(char* buffer, std::size_t capacity) = 0;
    virtual bool onRewindBody() = 0;
    virtual bool onTlsConnection(void* sslContext) = 0;
};

class SocketTable;

/// A reusable libcurl handle: what is the same for every request is set once, the rest by `prepare`.
class EasyHandle {
public:
    enum class Bodies : std::uint8_t { Small, LargeReply };

    /// Throws std::bad_alloc when libcurl has no handle to give.
    EasyHandle(EasyEvents& events, SocketTable& sockets);

    [[nodiscard]] CURL* get() const { return handle_.get(); }
    static EasyEvents* eventsOf(CURL* handle);

    /// Readies it for `request`, which must stay as it is until the transfer has ended.
    void prepare(const platform::HttpRequest& request, Bodies bodies);

    [[nodiscard]] long number(CURLINFO which) const;

private:
    struct Cleanup {
        void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
    };

    void setConstantOptions(EasyEvents& events, SocketTable& sockets);
    void setMethodAndBody(const platform::HttpRequest& request);
    void setHeaders(const platform::HttpRequest& request);

    std::unique_ptr<CURL, Cleanup> handle_;
    // A list of our own in libcurl's form: its own makes two allocations a field and walks the list for each.
    std::vector<std::string> headerLines_;
    std::vector<curl_slist> headerNodes_;
};

}  // namespace halvane::linux_http
