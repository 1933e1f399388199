#pragma once

#include <map>
#include <string>
#include <string_view>

namespace halvane::test {

/// A client that sends exactly the bytes it is given: a server has to stand what no proper client sends.
/// Every operation gives up after ten seconds.
class HttpProbe {
public:
    /// `url`: "http://127.0.0.1:port".
    explicit HttpProbe(const std::string& url);

    struct Reply {
        int status = 0;                              ///< 0: no reply
        std::map<std::string, std::string> headers;  ///< names in lower case
        std::string body;
    };

    /// One request on a connection of its own. `headers`: lines ended by "\r\n".
    Reply request(std::string_view method, const std::string& target, const std::string& headers = {}, const std::string& body = {}) const;
    Reply postJson(const std::string& target, const std::string& body, const std::string& token = {}) const;
    Reply get(const std::string& target, const std::string& token = {}) const;

    /// What the sender does with its own side once it has sent: a server that waits for more notices
    /// the end, but may also take the whole connection for dead and not answer.
    enum class Sender { StaysOpen, Ends };
    /// Sends `bytes` and answers all that comes back until the server closes.
    std::string exchange(std::string_view bytes, Sender sender = Sender::StaysOpen) const;
    /// Sends `bytes` and hangs up without reading.
    void sendAndLeave(std::string_view bytes) const;

    static Reply parse(const std::string& bytes);

private:
    [[nodiscard]] int connect() const;

    int port_;
};

}  // namespace halvane::test
