#pragma once

#include "request/XMTypes.h"
#include "request/XMUploadFormData.h"
#include "util/Value.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace halvane::request {

/// One HTTP exchange: what the caller wants, and, once it is sent, under which identifier it runs.
///
/// The caller fills it in the configuration callback and then leaves its fields alone; it runs in one place at a time; `identifier` and the
/// callback fields may be read from any thread. The task that serves it keeps it alive, so nobody else has to. It keeps its callbacks until
/// success or failure has been delivered, then lets go of them: a request that the caller holds on to does not keep alive what the
/// callbacks captured.
class XMRequest : public std::enable_shared_from_this<XMRequest> {
public:
    static std::shared_ptr<XMRequest> request() { return std::make_shared<XMRequest>(); }

    // Which general values of the center it takes over.
    bool useGeneralServer = true;
    bool useGeneralHeaders = true;
    bool useGeneralParameters = true;

    // Where to: a complete `url`, or `api` resolved against `server`.
    std::optional<std::string> server;
    std::optional<std::string> api;
    std::optional<std::string> url;

    std::optional<util::Dictionary> parameters;
    platform::HttpHeaders headers;

    XMRequestType requestType = XMRequestNormal;
    XMHTTPMethod httpMethod = XMHTTPMethodPOST;
    XMRequestSerializerType requestSerializerType = XMRequestSerializerRAW;
    XMResponseSerializerType responseSerializerType = XMResponseSerializerJSON;

    double timeoutInterval = 60;   ///< seconds in which no byte moves; not positive: 60
    std::uint64_t retryCount = 0;  ///< further attempts after a failure; counts down

    std::optional<util::Dictionary> userInfo;  ///< the caller's own; nobody sends it

    std::vector<XMUploadFormData> uploadFormDatas;
    std::optional<std::filesystem::path> downloadSavePath;  ///< a directory that exists, or the file

    // Bytes, or a std::filesystem::path.
    template <typename Content>
    void addFormDataWithName(std::string name, Content content) {
        uploadFormDatas.push_back(XMUploadFormData::formDataWithName(std::move(name), std::move(content)));
    }
    template <typename Content>
    void addFormDataWithName(std::string name, std::string fileName, std::string mimeType, Content content) {
        uploadFormDatas.push_back(
            XMUploadFormData::formDataWithName(std::move(name), std::move(fileName), std::move(mimeType), std::move(content)));
    }

    /// "+" (ordinary session) or "-" (pinned session) and the task's number. Absent before the task is made; anew at every
    /// retry.
    [[nodiscard]] std::optional<std::string> identifier() const;

    [[nodiscard]] XMSuccessBlock successBlock() const { return callbacks()->onSuccess; }
    [[nodiscard]] XMFailureBlock failureBlock() const { return callbacks()->onFailure; }
    [[nodiscard]] XMFinishedBlock finishedBlock() const { return callbacks()->onFinished; }
    [[nodiscard]] XMProgressBlock progressBlock() const { return callbacks()->onProgress; }
    void cleanCallbackBlocks();

private:
    friend class XMCenter;
    friend class XMEngine;

    /// Never null.
    [[nodiscard]] std::shared_ptr<const XMCallbacks> callbacks() const;
    /// Those that are given; an absent one leaves the field as it is.
    void installCallbacks(XMCallbacks given);
    void setIdentifier(std::optional<std::string> identifier);

    /// This request for as long as it runs: when the last copy goes, however that comes about, it lets go of the callbacks
    /// that it has now. A queue that ends drops its blocks; what they hold must not keep itself alive.
    static std::shared_ptr<XMRequest> running(const std::shared_ptr<XMRequest>& request);
    void letGoOf(const std::shared_ptr<const XMCallbacks>& callbacks);
    /// Success or failure, then finished unless that has cleared it; then the callbacks are let go of.
    void deliver(Outcome outcome, const Response& response, const Failure& failure);

    mutable std::mutex mutex_;  // guards the two below
    std::optional<std::string> identifier_;
    std::shared_ptr<const XMCallbacks> callbacks_;
};

}  // namespace halvane::request
