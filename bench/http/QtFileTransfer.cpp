#include "QtFileTransfer.h"

#include "RawFile.h"

#include <QEventLoop>
#include <QFile>
#include <QNetworkReply>
#include <QUrl>

#include <memory>
#include <vector>

namespace halvane::bench {

namespace {

bool waitFor(const QNetworkReply& reply) {
    QEventLoop loop;
    QObject::connect(&reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    if (!reply.isFinished()) loop.exec();
    return reply.error() == QNetworkReply::NoError;
}

}  // namespace

QNetworkRequest QtFileTransfer::requestFor(const std::string& url) {
    QNetworkRequest request(QUrl(QString::fromStdString(url)));
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    return request;
}

bool QtFileTransfer::download(const std::string& url, const std::filesystem::path& destination) {
    constexpr qint64 kReadAhead = 1024 * 1024;
    RawFile file(destination, RawFile::Use::Write);
    std::vector<char> bytes(kReadAhead);
    const std::unique_ptr<QNetworkReply> reply(manager_.get(requestFor(url)));
    reply->setReadBufferSize(kReadAhead);
    bool written = true;
    const auto drain = [&] {
        for (qint64 count = 0; (count = reply->read(bytes.data(), kReadAhead)) > 0;)
            written = file.write(bytes.data(), static_cast<std::size_t>(count)) && written;
    };
    QObject::connect(reply.get(), &QNetworkReply::readyRead, reply.get(), drain);
    const bool whole = waitFor(*reply);
    drain();
    return whole && written;
}

bool QtFileTransfer::upload(const std::string& url, const std::filesystem::path& source) {
    QFile file(QString::fromStdString(source.string()));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) return false;
    QNetworkRequest request = requestFor(url);
    request.setHeader(QNetworkRequest::ContentTypeHeader, "application/octet-stream");
    const std::unique_ptr<QNetworkReply> reply(manager_.put(request, &file));
    return waitFor(*reply);
}

}  // namespace halvane::bench
