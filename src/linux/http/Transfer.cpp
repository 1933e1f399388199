#include "linux/http/Transfer.h"

#include "linux/http/CurlErrors.h"
#include "linux/http/Redirect.h"
#include "linux/http/SocketTable.h"
#include "linux/http/TaskBoard.h"
#include "util/Url.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace halvane::linux_http {

namespace {

using util::UrlError;
using util::urlError;

constexpr std::chrono::milliseconds kProgressInterval{50};
constexpr std::uint64_t kMostDiscarded = 1024UL * 1024UL;  // beyond that a new connection is the cheaper one

bool isMethod(std::string_view method) {
    return !method.empty() &&
           std::ranges::all_of(method, [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-'; });
}

}  // namespace

Transfer::Transfer(const TransferContext& context) : context_(context), easy_(*this, context.sockets) {}

std::optional<util::Error> Transfer::begin(std::shared_ptr<CurlTask> task, Clock::time_point now) {
    task_ = std::move(task);
    const platform::HttpRequest& request = task_->request();
    if (!util::isSendableUrl(request.url)) return urlError(UrlError::BadUrl, "The address is not one of http or https, or not valid.");
    if (!isMethod(request.method)) return urlError(UrlError::Unknown, "The request has no valid method.");
    redirects_ = 0;
    reportedUp_ = 0;
    lastReport_ = {};
    const auto timeout = request.timeout.count() > 0 ? request.timeout : platform::HttpRequest::kDefaultTimeout;
    idleTime_ = std::min<std::chrono::milliseconds>(timeout, std::chrono::hours(24));
    lastMovement_ = now;
    moved_ = false;
    prepareHop();
    return std::nullopt;
}

void Transfer::prepareHop() {
    head_.reset();
    body_ = Body::Keep;
    received_ = readFromSource_ = uploaded_ = 0;
    discardedEnough_ = false;
    refusal_.reset();
    tlsReport_.reset();
    acknowledged_.reset();
    easy_.prepare(task_->request(), task_->isDownload() ? EasyHandle::Bodies::LargeReply : EasyHandle::Bodies::Small);
}

// What libcurl tells while the transfer runs.

bool Transfer::refuse(util::Error error) {
    refusal_ = std::move(error);
    return false;
}

bool Transfer::onHeaderLine(std::string_view line) {
    moved_ = true;
    switch (head_.take(line)) {
        case ResponseHead::Line::Taken:
            return true;
        case ResponseHead::Line::Completed:
            return onHeadComplete();
        case ResponseHead::Line::Refused:
            return refuse(urlError(UrlError::BadServerResponse, "The server's header is not HTTP, or too long."));
    }
    return false;
}

bool Transfer::onHeadComplete() {
    platform::HttpResponse& response = head_.response();
    response.url = task_->request().url;
    if (isRedirect(response)) {
        body_ = Body::Discard;
    } else if (!task_->isDownload()) {
        body_ = Body::Keep;
        if (isTooLarge(announcedLength().value_or(0))) return refuseTooLarge();
        constexpr std::uint64_t kMostReserved = 1024UL * 1024UL;  // an announcement alone gets no more memory
        outcome_.body.reserve(static_cast<std::size_t>(std::min(announcedLength().value_or(0), kMostReserved)));
    } else if (!response.isSuccess()) {
        body_ = Body::Discard;
    } else {
        body_ = Body::File;
        if (isTooLarge(announcedLength().value_or(0))) return refuseTooLarge();
        if (const auto opened = file_.open(task_->destinationFor(response)); !opened) return refuse(opened.error());
    }
    return true;
}

std::optional<std::uint64_t> Transfer::announcedLength() {
    const platform::HttpHeaders& headers = head_.response().headers;
    const std::string* text = headers.find("Content-Length");
    if (text == nullptr || headers.find("Content-Encoding") != nullptr || headers.find("Transfer-Encoding") != nullptr) return std::nullopt;
    std::uint64_t length = 0;
    const auto [end, failure] = std::from_chars(text->data(), text->data() + text->size(), length);
    if (failure != std::errc() || end != text->data() + text->size()) return std::nullopt;
    return length;
}

bool Transfer::onBody(std::string_view bytes) {
    moved_ = true;
    received_ += bytes.size();
    return take(bytes);
}

bool Transfer::isTooLarge(std::uint64_t length) const { return length > task_->request().largestReply.value_or(length); }

bool Transfer::refuseTooLarge() {
    outcome_.body = {};
    return refuse(urlError(UrlError::TooLarge, "The server's reply is longer than was asked for."));
}

bool Transfer::take(std::string_view bytes) {
    if (body_ != Body::Discard && isTooLarge(received_)) return refuseTooLarge();
    switch (body_) {
        case Body::Keep:
            if (received_ > context_.largestBody) {
                outcome_.body = {};
                return refuse(urlError(UrlError::BadServerResponse, "The server's reply is larger than this program takes."));
            }
            outcome_.body.append(bytes);
            break;
        case Body::File:
            if (const auto written = file_.write(bytes); !written) return refuse(written.error());
            break;
        case Body::Discard:
            discardedEnough_ = received_ > kMostDiscarded;
            return !discardedEnough_;
    }
    if (task_->wantsProgress(CurlTask::Direction::Down)) reportProgress(CurlTask::Direction::Down, received_);
    return true;
}

void Transfer::onUploaded(std::uint64_t bytes) {
    if (bytes <= uploaded_) return;
    moved_ = true;
    uploaded_ = bytes;
    if (task_->wantsProgress(CurlTask::Direction::Up)) reportProgress(CurlTask::Direction::Up, bytes);
}

std::optional<std::size_t> Transfer::onReadBody(char* buffer, std::size_t capacity) {
    platform::HttpBodyStream& source = *task_->request().bodyStream;
    const auto length = source.length();
    if (length) capacity = static_cast<std::size_t>(std::min<std::uint64_t>(capacity, *length - std::min(*length, readFromSource_)));
    const auto read = capacity == 0 ? std::optional<std::size_t>(0) : source.read(buffer, capacity);
    if (!read || (*read == 0 && length && readFromSource_ < *length)) {
        refuse(urlError(UrlError::Unknown, "The body of the request could not be read to its end."));
        return std::nullopt;
    }
    readFromSource_ += *read;
    return read;
}

bool Transfer::onRewindBody() {
    const auto& source = task_->request().bodyStream;
    readFromSource_ = 0;
    return !source || source->rewind();
}

bool Transfer::onTlsConnection(void* sslContext) {
    tlsReport_ = std::make_shared<TlsReport>();
    const auto origin = util::originOf(task_->request().url);
    return origin && context_.tls.prepare(static_cast<SSL_CTX*>(sslContext), origin->host, tlsReport_);
}

// How it ends.

Transfer::Next Transfer::finish(CURLcode code) {
    outcome_.error = judge(code);
    if (!outcome_.error && isRedirect(head_.response())) {
        if (++redirects_ > kMostRedirects) {
            outcome_.error = urlError(UrlError::BadServerResponse, "The server redirected too often.");
        } else if (auto redirected = applyRedirect(task_->request(), head_.response()); !redirected) {
            outcome_.error = redirected.error();
        } else {
            prepareHop();
            return Next::SendAgain;
        }
    }
    if (!outcome_.error && task_->isDownload()) outcome_.error = completeDownload();
    if (!outcome_.error) reportLastProgress();
    return Next::Ended;
}

std::optional<util::Error> Transfer::judge(CURLcode code) {
    if (refusal_) return refusal_;
    const std::string server = util::hostForDisplay(task_->request().url);
    if (code == CURLE_OK && !head_.isComplete()) return connectionLostError(server);
    if (code == CURLE_OK || discardedEnough_) return std::nullopt;
    FailureContext failure{.server = server, .osErrno = static_cast<int>(easy_.number(CURLINFO_OS_ERRNO))};
    if (tlsReport_) {
        failure.certificateRefusal = tlsReport_->refusal;
        failure.tlsAlertReceived = tlsReport_->alertReceived;
    }
    return errorOf(code, failure);
}

std::optional<util::Error> Transfer::completeDownload() {
    const platform::HttpResponse& response = head_.response();
    if (!response.isSuccess()) {
        return urlError(UrlError::BadServerResponse, "The server answered with status " + std::to_string(response.status) + ".");
    }
    if (context_.board.isCancelAsked(*task_)) return cancelledError();
    if (const auto committed = file_.commit(); !committed) return committed.error();
    outcome_.file = file_.destination();
    return std::nullopt;
}

void Transfer::fail(util::Error error) { outcome_.error = std::move(error); }

void Transfer::timeOut() { fail(timedOutError(util::hostForDisplay(task_->request().url))); }

std::pair<std::shared_ptr<CurlTask>, TaskOutcome> Transfer::end() {
    file_.discard();
    if (head_.isComplete()) outcome_.response = std::move(head_.response());
    head_.reset();
    // Bodies may be large, and tasks are kept by their callers for as long as they like.
    task_->request().body = {};
    task_->request().bodyStream.reset();
    return {std::move(task_), std::exchange(outcome_, {})};
}

// Progress and idle time.

void Transfer::reportProgress(CurlTask::Direction direction, std::uint64_t completed) {
    const auto now = Clock::now();
    if (now - lastReport_ < kProgressInterval) return;
    if (direction == CurlTask::Direction::Up) {
        if (completed <= reportedUp_) return;  // a body that is sent again
        reportedUp_ = completed;
    }
    lastReport_ = now;
    const platform::HttpRequest& request = task_->request();
    const auto total = direction == CurlTask::Direction::Down ? announcedLength()
                       : request.bodyStream                   ? request.bodyStream->length()
                                                              : request.body.size();
    context_.board.progress(*task_, direction, {completed, total});
}

void Transfer::reportLastProgress() {
    lastReport_ = {};
    curl_off_t sent = 0;
    curl_easy_getinfo(handle(), CURLINFO_SIZE_UPLOAD_T, &sent);
    if (sent > 0 && task_->wantsProgress(CurlTask::Direction::Up))
        reportProgress(CurlTask::Direction::Up, static_cast<std::uint64_t>(sent));
    lastReport_ = {};
    if (task_->wantsProgress(CurlTask::Direction::Down)) reportProgress(CurlTask::Direction::Down, received_);
}

void Transfer::noteMovement(Clock::time_point now) {
    if (!std::exchange(moved_, false)) return;
    lastMovement_ = now;
    acknowledged_.reset();
}

bool Transfer::movedUnseen(Clock::time_point now) {
    const auto movement = context_.sockets.movement(localPort());
    if (!movement) return false;
    auto idle = std::chrono::duration_cast<Clock::duration>(movement->sinceReceived);
    // Without an earlier count to compare with, a peer that still has bytes of ours to take gets the benefit of the doubt once.
    const bool tookBytes = acknowledged_ ? *acknowledged_ != movement->bytesAcknowledged : movement->hasUnacknowledged;
    if (tookBytes) idle = std::min(idle, std::chrono::duration_cast<Clock::duration>(movement->sinceAcknowledged));
    acknowledged_ = movement->bytesAcknowledged;
    if (idle >= idleTime_) return false;
    lastMovement_ = now - idle;
    return true;
}

}  // namespace halvane::linux_http
