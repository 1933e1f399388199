#pragma once

#include "FileTransfer.h"

namespace halvane::bench {

/// cpp-httplib with a content receiver and a content provider.
class HttplibFileTransfer final : public FileTransfer {
public:
    bool download(const std::string& url, const std::filesystem::path& destination) override;
    bool upload(const std::string& url, const std::filesystem::path& source) override;
};

}  // namespace halvane::bench
