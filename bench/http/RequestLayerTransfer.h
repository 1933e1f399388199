#pragma once

#include "FileTransfer.h"
#include "request/XMCenter.h"
#include "request/XMEngine.h"
#include "request/factory/RequestLayer.h"

#include <future>
#include <memory>

namespace halvane::bench {

/// Downloads and form uploads of the request layer.
class RequestLayerTransfer final : public FileTransfer {
public:
    bool download(const std::string& url, const std::filesystem::path& destination) override {
        return send([&](request::XMRequest& request) {
            request.url = url;
            request.requestType = request::XMRequestDownload;
            request.downloadSavePath = destination;
        });
    }

    /// As a part of a form, by POST.
    bool upload(const std::string& url, const std::filesystem::path& source) override {
        return send([&](request::XMRequest& request) {
            request.url = url;
            request.requestType = request::XMRequestUpload;
            request.addFormDataWithName("file", source);
        });
    }

private:
    bool send(const request::XMCenter::RequestBlock& configure) {
        std::promise<bool> ended;
        center_->sendRequest(configure, {.onFinished = [&](const request::Response& response, const request::Failure& failure) {
                                 ended.set_value(response && !failure);
                             }});
        return ended.get_future().get();
    }

    const request::RequestEnvironment environment_ =
        request::RequestLayer::makeEnvironment({.programName = "bench/1.0", .languages = {"en"}});
    const std::shared_ptr<request::XMCenter> center_ =
        request::XMCenter::center(environment_, std::make_shared<request::XMEngine>(environment_));
};

}  // namespace halvane::bench
