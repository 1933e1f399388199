#pragma once

#include "linux/http/CurlTask.h"
#include "linux/http/DownloadFile.h"
#include "linux/http/EasyHandle.h"
#include "linux/http/ResponseHead.h"
#include "linux/http/TlsGate.h"

#include <chrono>
#include <memory>
#include <optional>

namespace halvane::linux_http {

class SocketTable;
class TaskBoard;

/// What every transfer of a session shares. All of it outlives them.
struct TransferContext {
    TaskBoard& board;
    const TlsGate& tls;
    SocketTable& sockets;
    std::uint64_t largestBody;
};

/// One running task on one reusable handle, redirects included. Network thread.
class Transfer final : private EasyEvents {
public:
    using Clock = std::chrono::steady_clock;
    enum class Next : std::uint8_t { Ended, SendAgain };

    explicit Transfer(const TransferContext& context);
    ~Transfer() override = default;
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;

    [[nodiscard]] CURL* handle() const { return easy_.get(); }
    static Transfer& of(CURL* handle) { return static_cast<Transfer&>(*EasyHandle::eventsOf(handle)); }

    /// Begins with `task`; an error when the request cannot be sent at all.
    std::optional<util::Error> begin(std::shared_ptr<CurlTask> task, Clock::time_point now);
    /// libcurl is done with the handle. Ended: `end` tells how; SendAgain: the handle is ready for its next turn.
    Next finish(CURLcode code);
    /// Gives up what runs.
    void fail(util::Error error);
    /// Releases the task with its outcome; the transfer is free for another one.
    std::pair<std::shared_ptr<CurlTask>, TaskOutcome> end();

    [[nodiscard]] const CurlTask* task() const { return task_.get(); }

    /// Bytes that moved since the last call restart the idle time.
    void noteMovement(Clock::time_point now);
    [[nodiscard]] Clock::time_point deadline() const { return lastMovement_ + idleTime_; }
    /// Asked when the deadline has passed: whether the kernel saw bytes move that libcurl has not told of.
    bool movedUnseen(Clock::time_point now);
    [[nodiscard]] long localPort() const { return easy_.number(CURLINFO_LOCAL_PORT); }
    void timeOut();

private:
    enum class Body : std::uint8_t { Keep, File, Discard };

    bool onHeaderLine(std::string_view line) override;
    bool onBody(std::string_view bytes) override;
    void onUploaded(std::uint64_t bytes) override;
    std::optional<std::size_t> onReadBody(char* buffer, std::size_t capacity) override;
    bool onRewindBody() override;
    bool onTlsConnection(void* sslContext) override;

    void prepareHop();
    bool onHeadComplete();
    [[nodiscard]] std::optional<std::uint64_t> announcedLength();
    bool refuse(util::Error error);
    bool take(std::string_view bytes);
    [[nodiscard]] bool isTooLarge(std::uint64_t length) const;
    bool refuseTooLarge();
    std::optional<util::Error> judge(CURLcode code);
    std::optional<util::Error> completeDownload();
    void reportProgress(CurlTask::Direction direction, std::uint64_t completed);
    void reportLastProgress();

    TransferContext context_;
    EasyHandle easy_;

    // For one task:
    std::shared_ptr<CurlTask> task_;
    TaskOutcome outcome_;
    int redirects_ = 0;
    std::uint64_t reportedUp_ = 0;
    Clock::time_point lastReport_;

    // For one hop of it:
    ResponseHead head_;
    DownloadFile file_;
    Body body_ = Body::Keep;
    std::uint64_t received_ = 0;
    std::uint64_t readFromSource_ = 0;
    std::uint64_t uploaded_ = 0;
    bool discardedEnough_ = false;
    std::optional<util::Error> refusal_;  ///< why a callback stopped libcurl
    std::shared_ptr<TlsReport> tlsReport_;

    // Idle time:
    Clock::duration idleTime_{};
    Clock::time_point lastMovement_;
    bool moved_ = false;
    std::optional<std::uint64_t> acknowledged_;
};

}  // namespace halvane::linux_http
