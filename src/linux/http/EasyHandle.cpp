#include "linux/http/EasyHandle.h"

#include "linux/http/SocketTable.h"
#include "util/Text.h"

#include <sys/socket.h>
#include <unistd.h>
#include <algorithm>
#include <cstdint>
#include <new>
#include <optional>
#include <string_view>

namespace halvane::linux_http {

namespace {

constexpr long kUsualReplyBuffer = 16L * 1024;
constexpr long kLargeReplyBuffer = 256L * 1024;
constexpr long kUsualUploadBuffer = 64L * 1024;
constexpr long kLargeUploadBuffer = 512L * 1024;

size_t headerLine(char* data, size_t size, size_t count, void* events) {
    return static_cast<EasyEvents*>(events)->onHeaderLine({data, size * count}) ? size * count : 0;
}

size_t bodyBytes(char* data, size_t size, size_t count, void* events) {
    return static_cast<EasyEvents*>(events)->onBody({data, size * count}) ? size * count : 0;
}

size_t readBody(char* buffer, size_t size, size_t count, void* events) {
    return static_cast<EasyEvents*>(events)->onReadBody(buffer, size * count).value_or(CURL_READFUNC_ABORT);
}

int seekBody(void* events, curl_off_t offset, int origin) {
    if (offset != 0 || origin != SEEK_SET) return CURL_SEEKFUNC_CANTSEEK;
    return static_cast<EasyEvents*>(events)->onRewindBody() ? CURL_SEEKFUNC_OK : CURL_SEEKFUNC_FAIL;
}

int transferInfo(void* events, curl_off_t /*toReceive*/, curl_off_t /*received*/, curl_off_t /*toSend*/, curl_off_t sent) {
    static_cast<EasyEvents*>(events)->onUploaded(static_cast<std::uint64_t>(sent));
    return 0;
}

CURLcode tlsContext(CURL* /*handle*/, void* context, void* events) {
    return static_cast<EasyEvents*>(events)->onTlsConnection(context) ? CURLE_OK : CURLE_SSL_CONNECT_ERROR;
}

curl_socket_t openSocket(void* sockets, curlsocktype /*purpose*/, curl_sockaddr* address) {
    const int descriptor = ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
    if (descriptor < 0) return CURL_SOCKET_BAD;
    static_cast<SocketTable*>(sockets)->add(descriptor);
    return descriptor;
}

int closeSocket(void* sockets, curl_socket_t descriptor) {
    static_cast<SocketTable*>(sockets)->remove(descriptor);
    return ::close(descriptor);
}

/// Length and framing of a body are the transport's to state.
bool isFramingField(std::string_view name) {
    if (name.size() < 14) return false;
    const std::string lower = util::lowercasedAscii(name);
    return lower == "content-length" || lower == "transfer-encoding";
}

bool isFieldName(std::string_view name) {
    constexpr std::string_view kSeparators = "()<>@,;:\\\"/[]?={}";
    return !name.empty() &&
           std::ranges::all_of(name, [&](char c) { return c > ' ' && c < '\x7f' && kSeparators.find(c) == std::string_view::npos; });
}

/// Whether the request states a body, be it an empty one.
bool carriesBody(const platform::HttpRequest& request) {
    const std::string& method = request.method;
    if (method == "HEAD") return false;
    return request.bodyStream || !request.body.empty() || method == "POST" || method == "PUT" || method == "PATCH";
}

bool isLargeUpload(const platform::HttpRequest& request) {
    const std::uint64_t length = request.bodyStream ? request.bodyStream->length().value_or(kLargeUploadBuffer) : request.body.size();
    return length > static_cast<std::uint64_t>(kUsualUploadBuffer);
}

}  // namespace

EasyHandle::EasyHandle(EasyEvents& events, SocketTable& sockets) : handle_(curl_easy_init()) {
    if (!handle_) throw std::bad_alloc();
    setConstantOptions(events, sockets);
}

void EasyHandle::setConstantOptions(EasyEvents& events, SocketTable& sockets) {
    CURL* easy = get();
    curl_easy_setopt(easy, CURLOPT_PRIVATE, &events);
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy, CURLOPT_QUICK_EXIT, 1L);  // cancelling must not wait for a name server
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 0L);  // what a redirect may take along is decided in Redirect.cpp
    curl_easy_setopt(easy, CURLOPT_PATH_AS_IS, 1L);
    curl_easy_setopt(easy, CURLOPT_ACCEPT_ENCODING, "");  // all that libcurl decodes
    curl_easy_setopt(easy, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    // Idle times are ours to watch; libcurl's own limit on connecting must not come first.
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT, 24L * 60 * 60);

    curl_easy_setopt(easy, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    curl_easy_setopt(easy, CURLOPT_CAINFO, nullptr);  // TlsGate brings the authorities, once for the session
    curl_easy_setopt(easy, CURLOPT_CAPATH, nullptr);
    curl_easy_setopt(easy, CURLOPT_SSL_VERIFYPEER, 1L);
    curl_easy_setopt(easy, CURLOPT_SSL_VERIFYHOST, 0L);       // TlsGate checks the name, inside the handshake
    curl_easy_setopt(easy, CURLOPT_SSL_SESSIONID_CACHE, 0L);  // a resumed session would show no certificate to judge
    curl_easy_setopt(easy, CURLOPT_SSL_CTX_FUNCTION, &tlsContext);
    curl_easy_setopt(easy, CURLOPT_SSL_CTX_DATA, &events);

    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, &headerLine);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, &events);
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &bodyBytes);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, &events);
    curl_easy_setopt(easy, CURLOPT_READFUNCTION, &readBody);
    curl_easy_setopt(easy, CURLOPT_READDATA, &events);
    curl_easy_setopt(easy, CURLOPT_SEEKFUNCTION, &seekBody);
    curl_easy_setopt(easy, CURLOPT_SEEKDATA, &events);
    curl_easy_setopt(easy, CURLOPT_XFERINFOFUNCTION, &transferInfo);
    curl_easy_setopt(easy, CURLOPT_XFERINFODATA, &events);
    curl_easy_setopt(easy, CURLOPT_OPENSOCKETFUNCTION, &openSocket);
    curl_easy_setopt(easy, CURLOPT_OPENSOCKETDATA, &sockets);
    curl_easy_setopt(easy, CURLOPT_CLOSESOCKETFUNCTION, &closeSocket);
    curl_easy_setopt(easy, CURLOPT_CLOSESOCKETDATA, &sockets);
}

EasyEvents* EasyHandle::eventsOf(CURL* handle) {
    EasyEvents* events = nullptr;
    curl_easy_getinfo(handle, CURLINFO_PRIVATE, &events);
    return events;
}

void EasyHandle::prepare(const platform::HttpRequest& request, Bodies bodies) {
    const bool largeUpload = isLargeUpload(request);
    curl_easy_setopt(get(), CURLOPT_URL, request.url.c_str());
    curl_easy_setopt(get(), CURLOPT_BUFFERSIZE, bodies == Bodies::LargeReply ? kLargeReplyBuffer : kUsualReplyBuffer);
    curl_easy_setopt(get(), CURLOPT_UPLOAD_BUFFERSIZE, largeUpload ? kLargeUploadBuffer : kUsualUploadBuffer);
    // Costs a call at every turn, so only where there is something to see.
    curl_easy_setopt(get(), CURLOPT_NOPROGRESS, largeUpload ? 0L : 1L);
    setMethodAndBody(request);
    setHeaders(request);
}

void EasyHandle::setMethodAndBody(const platform::HttpRequest& request) {
    CURL* easy = get();
    const std::string& method = request.method;
    curl_easy_setopt(easy, CURLOPT_HTTPGET, 1L);  // undoes what the request before has set
    curl_easy_setopt(easy, CURLOPT_CUSTOMREQUEST, nullptr);
    if (method == "HEAD") {
        curl_easy_setopt(easy, CURLOPT_NOBODY, 1L);
    } else if (request.bodyStream) {
        const auto length = request.bodyStream->length();
        curl_easy_setopt(easy, CURLOPT_UPLOAD, 1L);
        curl_easy_setopt(easy, CURLOPT_INFILESIZE_LARGE, length ? static_cast<curl_off_t>(*length) : curl_off_t{-1});
        curl_easy_setopt(easy, CURLOPT_CUSTOMREQUEST, method.c_str());
    } else if (carriesBody(request)) {
        curl_easy_setopt(easy, CURLOPT_POST, 1L);
        curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body.size()));
        curl_easy_setopt(easy, CURLOPT_POSTFIELDS, request.body.data());
        if (method != "POST") curl_easy_setopt(easy, CURLOPT_CUSTOMREQUEST, method.c_str());
    } else if (method != "GET") {
        curl_easy_setopt(easy, CURLOPT_CUSTOMREQUEST, method.c_str());
    }
}

void EasyHandle::setHeaders(const platform::HttpRequest& request) {
    headerLines_.clear();
    for (const auto& [name, value] : request.headers.fields()) {
        if (!isFieldName(name) || isFramingField(name)) continue;
        const bool blank = value.find_first_not_of(" \t") == std::string::npos;
        headerLines_.push_back(blank ? name + ";" : name + ": " + value);  // "Name;" is how libcurl sends an empty one
    }
    if (carriesBody(request)) {
        headerLines_.emplace_back("Expect:");  // waiting for leave to send costs a second with servers that never give it
        if (request.headers.find("Content-Type") == nullptr) headerLines_.emplace_back("Content-Type:");
    }
    headerNodes_.resize(headerLines_.size());
    for (std::size_t i = 0; i < headerNodes_.size(); ++i) {
        headerNodes_[i] = {headerLines_[i].data(), i + 1 < headerNodes_.size() ? &headerNodes_[i + 1] : nullptr};
    }
    curl_easy_setopt(get(), CURLOPT_HTTPHEADER, headerNodes_.empty() ? nullptr : headerNodes_.data());
}

long EasyHandle::number(CURLINFO which) const {
    long value = 0;
    curl_easy_getinfo(get(), which, &value);
    return value;
}

}  // namespace halvane::linux_http
