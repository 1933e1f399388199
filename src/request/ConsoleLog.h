#pragma once

#include "request/XMRequest.h"
#include "util/Log.h"

#include <string>

namespace halvane::request {

/// The banners that a center writes about each request while its console log is on. What is secret by its name (password,
/// token, cookie …) in headers, parameters, addresses and decoded replies is covered. Any thread.
class ConsoleLog {
public:
    explicit ConsoleLog(std::shared_ptr<util::Log> log) : log_(std::move(log)) {}

    void request(const XMRequest& request) const;
    void response(const XMRequest& request, const Response& response) const;
    void failure(const XMRequest& request, const Failure& failure) const;

private:
    void write(const std::string& text) const;

    const std::shared_ptr<util::Log> log_;
};

}  // namespace halvane::request
