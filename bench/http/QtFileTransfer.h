#pragma once

#include "FileTransfer.h"

#include <QNetworkAccessManager>
#include <QNetworkRequest>

namespace halvane::bench {

/// QNetworkAccessManager with a limit on what it reads ahead. Wants a QCoreApplication.
class QtFileTransfer final : public FileTransfer {
public:
    bool download(const std::string& url, const std::filesystem::path& destination) override;
    bool upload(const std::string& url, const std::filesystem::path& source) override;

private:
    [[nodiscard]] static QNetworkRequest requestFor(const std::string& url);

    QNetworkAccessManager manager_;
};

}  // namespace halvane::bench
