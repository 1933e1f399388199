#pragma once

#include "platform/HttpSession.h"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace halvane::test {

class ScriptedSession;

/// A transport without a network: tests look at what was sent and decide what comes back. One
/// thread; completions run at once, inside `reply` and its like, on no queue. An exchange lets go of
/// its handlers when it completes; one that was not resumed gets no answer but std::logic_error.
class ScriptedTransport final : public platform::HttpTransport {
public:
    std::shared_ptr<platform::HttpSession> makeSession(platform::HttpSessionConfiguration configuration) override;
    util::Result<std::shared_ptr<platform::HttpBodyStream>> fileBody(const std::filesystem::path& file) override;
    [[nodiscard]] bool isDirectory(const std::filesystem::path& path) const override { return directories.contains(path); }

    /// One task that was made, with what its maker handed over.
    struct Exchange {
        platform::HttpRequest request;
        platform::HttpDataHandlers data;
        platform::HttpDownloadHandlers download;
        std::shared_ptr<void> context;
        bool isDownload = false;
        bool resumed = false;
        bool completed = false;
        std::size_t session = 0;  ///< which of the made sessions, from 0
    };

    /// Completes the exchange with a reply of `status`; a download's body goes to the file that the
    /// destination names, through `writeFile`.
    void reply(std::size_t index, platform::HttpResponse response, const util::Bytes& body);
    void reply(std::size_t index, int status, const std::string& contentType, const util::Bytes& body);
    void replyJson(std::size_t index, const util::Bytes& body) { reply(index, 200, "application/json", body); }
    void fail(std::size_t index, util::UrlError code, const std::string& description = "scripted");

    std::vector<std::shared_ptr<Exchange>> exchanges;
    std::vector<platform::HttpSessionConfiguration> sessions;
    std::map<std::filesystem::path, util::Bytes> files;  ///< what request bodies may be read from
    std::set<std::filesystem::path> directories;
    std::function<void(const std::filesystem::path&, const util::Bytes&)> writeFile;
};

}  // namespace halvane::test
