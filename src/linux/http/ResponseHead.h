#pragma once

#include "platform/HttpMessage.h"

#include <string_view>

namespace halvane::linux_http {

/// Status line and header fields of one reply, fed line by line. Interim replies (1xx) are forgotten as
/// the next one begins; fields after the end of the header (trailers) are not taken. Network thread.
class ResponseHead {
public:
    enum class Line { Taken, Completed, Refused };

    void reset();
    /// `line` with its line break. Refused: not a header, or more of it than anyone needs.
    Line take(std::string_view line);

    [[nodiscard]] bool isComplete() const { return complete_; }
    [[nodiscard]] platform::HttpResponse& response() { return response_; }

private:
    bool beginReply(std::string_view statusLine);
    void takeField(std::string_view line);

    platform::HttpResponse response_;
    std::size_t bytes_ = 0;
    bool complete_ = false;
};

}  // namespace halvane::linux_http
