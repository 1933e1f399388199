#pragma once

#include "util/Bytes.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace halvane::platform {

/// Header fields in order of insertion; names compare without regard to case.
class HttpHeaders {
public:
    using Field = std::pair<std::string, std::string>;

    HttpHeaders() = default;
    HttpHeaders(std::initializer_list<Field> fields);

    /// Replaces every field of that name. A line break in name or value drops the field: it would
    /// forge further headers.
    void set(const std::string& name, std::string value);
    /// A field as it arrives: one that stands already gets ", " and the further value. Line breaks as above.
    void append(std::string_view name, std::string_view value);
    void remove(std::string_view name);
    /// The first value under `name`, or null. Valid until the headers change.
    [[nodiscard]] const std::string* find(std::string_view name) const;
    [[nodiscard]] const std::vector<Field>& fields() const { return fields_; }

private:
    std::vector<Field> fields_;
};

/// A body that is produced while it is sent, so that a large file never stands in memory.
/// Used on the session's network thread only.
class HttpBodyStream {
public:
    virtual ~HttpBodyStream() = default;
    /// Total bytes; absent when it is not known in advance (sent chunked).
    [[nodiscard]] virtual std::optional<std::uint64_t> length() const = 0;
    /// Fills at most `capacity` bytes; 0 at the end, absent when reading failed (the task fails).
    virtual std::optional<std::size_t> read(char* buffer, std::size_t capacity) = 0;
    /// Back to the first byte, for a reply that asks to send again; false when that is impossible.
    virtual bool rewind() = 0;
};

/// One request as it goes out. A plain value.
struct HttpRequest {
    /// Idle time after which a request times out when nothing else is said.
    static constexpr std::chrono::milliseconds kDefaultTimeout{60'000};

    std::string method = "GET";
    std::string url;  ///< absolute; http or https
    HttpHeaders headers;
    util::Bytes body;                            ///< ignored when `bodyStream` is set
    std::shared_ptr<HttpBodyStream> bodyStream;  ///< upload tasks; used by one task at a time
    /// Longest time in which no byte moves; begins when the transfer begins. Not positive: default.
    std::chrono::milliseconds timeout = kDefaultTimeout;

    enum class Redirects {
        AnyScheme,
        SameScheme  ///< one from https to http, or the other way, fails the task with RedirectRefused
    };
    Redirects redirects = Redirects::AnyScheme;
    /// A reply with a longer body fails the task with TooLarge, as soon as that is known. Absent: the transport's own limit for
    /// what stands in memory, none for files.
    std::optional<std::uint64_t> largestReply;
};

/// Status line and headers of a reply.
struct HttpResponse {
    int status = 0;
    std::string url;  ///< after redirects
    HttpHeaders headers;

    /// The content type less its parameters, in lower case; empty when there is none.
    [[nodiscard]] std::string mimeType() const;
    /// File name that the reply suggests (Content-Disposition, else the URL's last path component,
    /// else "Unknown"), cut to its last component; never empty, "." or "..".
    [[nodiscard]] std::string suggestedFileName() const;
    [[nodiscard]] bool isSuccess() const { return status >= 200 && status <= 299; }
};

/// Bytes of a body so far. `total` is absent while it is not known.
struct HttpProgress {
    std::uint64_t completed = 0;
    std::optional<std::uint64_t> total;
};

}  // namespace halvane::platform
