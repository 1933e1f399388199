#pragma once

#include "util/Result.h"
#include "util/Value.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace halvane::platform {
class Directories;
class DispatchQueue;
class HttpSession;
class HttpTransport;
class Reachability;
struct HttpProgress;
}  // namespace halvane::platform
namespace halvane::http {
class SessionManager;
}
namespace halvane::session {
class HDCLUserConfig;
}

namespace halvane::service {

/// The HTTP client of the company server: JSON requests through one shared session, the session token
/// in the header "token-id", one callback with a result code; and downloads, each with a session of its
/// own that knows neither token nor JSON.
///
/// Main thread; callbacks arrive on the main queue, at most one result for each call, never inside it
/// (the result "no network" excepted). Destroying the client cancels everything, and
/// nothing that was in flight is answered any more.
class APIClient {
public:
    /// Codes of the result callback.
    static constexpr int kSuccess = 0;
    static constexpr int kFailure = -1;    ///< with the transport's or the decoder's error
    static constexpr int kNoNetwork = -2;  ///< neither object nor error

    using Response = std::function<void(int code, const std::optional<util::Value>& object, const std::optional<util::Error>& error)>;
    using Progress = std::function<void(const platform::HttpProgress&)>;
    using Destination = std::function<void(const std::string& fileUrl)>;  ///< "file://" and the path as it is
    using Failure = std::function<void(const util::Error&)>;

    /// A hook that may replace replies before the caller sees them.
    class Delegate {
    public:
        virtual ~Delegate() = default;
        /// `completion` may be called later, on the main thread, or never.
        virtual void handleSuccessRequest(const util::Value& response, std::function<void(const util::Value&)> completion) = 0;
    };

    struct Collaborators {
        platform::HttpTransport& transport;
        std::shared_ptr<platform::DispatchQueue> mainQueue;
        session::HDCLUserConfig& user;
        const platform::Directories& directories;
        platform::Reachability& reachability;
        std::string userAgent;
        std::string acceptLanguage;
    };

    explicit APIClient(Collaborators collaborators);
    ~APIClient();
    APIClient(const APIClient&) = delete;
    APIClient& operator=(const APIClient&) = delete;

    static APIClient& sharedInstance();

    /// `httpMethod`: 0 GET without parameters, 1 POST, 2 DELETE without parameters, 3 PUT, 4 GET of
    /// `pathGet`, 5 GET of `queryGet`. Any other code sends nothing and never answers.
    void requestURL(const std::string& url, int httpMethod, const std::optional<util::Dictionary>& params, Response response);

    /// Each "{key}" replaced by its value, then percent-escaped (an existing "%" again). Absent or empty
    /// parameters: the address as it is, unescaped.
    [[nodiscard]] static std::optional<std::string> pathGet(const std::optional<std::string>& url,
                                                            const std::optional<util::Dictionary>& params);
    /// "?key=value&key=value" appended in the dictionary's order, then percent-escaped as above.
    [[nodiscard]] static std::optional<std::string> queryGet(const std::optional<std::string>& url,
                                                             const std::optional<util::Dictionary>& params);

    void handleSuccessRequest(const util::Value& response, const Response& callback);

    void cancelAllRequest();

    /// Into the user's Caches directory under the file name that the reply suggests; an existing file is
    /// replaced. Exactly one of `destination` and `failure` is called. Any callback may be empty.
    void downloadURL(const std::string& url, Progress progress, Destination destination, Failure failure);

    /// Always 5; at least 1 means that there is a network.
    [[nodiscard]] int networkType() const { return 5; }

    /// True over mobile data and Wi-Fi, false where nothing is reachable, at each change. Unknown: not called.
    void networkReachableWithBlock(std::function<void(bool)> block);

    std::weak_ptr<Delegate> delegate;  ///< nothing in the program sets it

private:
    [[nodiscard]] http::SessionManager& manager();

    Collaborators collaborators_;
    std::unique_ptr<http::SessionManager> manager_;  // made by the first request
    std::map<unsigned long, std::shared_ptr<platform::HttpSession>> downloads_;
    unsigned long nextDownload_ = 0;
    std::shared_ptr<bool> alive_;  // false once destroyed: replies in flight find nobody
};

}  // namespace halvane::service
