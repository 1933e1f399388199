#pragma once

#include "platform/HttpSession.h"

#include <cstdint>

namespace halvane::linux_http {

/// The HTTP transport on libcurl, which is set up by the first session. Any thread.
class CurlTransport final : public platform::HttpTransport {
public:
    static constexpr std::uint64_t kLargestBody = 256ULL * 1024 * 1024;

    /// The body of a data task stands in memory; a larger one than `largestBody` fails it.
    explicit CurlTransport(std::uint64_t largestBody = kLargestBody);

    std::shared_ptr<platform::HttpSession> makeSession(platform::HttpSessionConfiguration configuration) override;
    util::Result<std::shared_ptr<platform::HttpBodyStream>> fileBody(const std::filesystem::path& file) override;
    [[nodiscard]] bool isDirectory(const std::filesystem::path& path) const override;

private:
    const std::uint64_t largestBody_;
};

}  // namespace halvane::linux_http
