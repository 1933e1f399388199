#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace halvane::bench {

/// What is asked of every contestant: a small GET, or a POST of a kilobyte of JSON.
enum class HttpExchange : std::uint8_t { Get, Post };

/// One way of exchanging with the bench's server. Used from one thread at a time: the bench's own for
/// the first requests, then the one on which the contestant calls `done`.
class HttpContestant {
public:
    virtual ~HttpContestant() = default;
    /// Sends one request; `done` is called once, on the contestant's result thread, with whether the
    /// whole reply had arrived.
    virtual void send(HttpExchange exchange, std::function<void(bool)> done) = 0;
};

/// A kilobyte, as a service request carries it.
inline const std::string& postedJson() {
    static const std::string text = R"({"user_name":"chen.xiao","note":")" + std::string(980, 'n') + R"("})";
    return text;
}

}  // namespace halvane::bench
