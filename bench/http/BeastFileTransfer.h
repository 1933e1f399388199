#pragma once

#include "FileTransfer.h"

namespace halvane::bench {

/// Boost.Beast: a file body for what comes, a buffer body for what goes, because its file body sends pieces of 4 KiB.
class BeastFileTransfer final : public FileTransfer {
public:
    bool download(const std::string& url, const std::filesystem::path& destination) override;
    bool upload(const std::string& url, const std::filesystem::path& source) override;
};

}  // namespace halvane::bench
