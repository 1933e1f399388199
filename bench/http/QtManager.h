#pragma once

#include "HttpContestant.h"
#include "HttpQueue.h"

#include <QByteArray>
#include <QNetworkAccessManager>
#include <QNetworkRequest>
#include <QThread>

namespace halvane::bench {

/// QNetworkAccessManager, on a thread with an event loop of its own. Wants a QCoreApplication.
class QtManager final : public HttpContestant {
public:
    explicit QtManager(const std::string& url);
    ~QtManager() override;
    QtManager(const QtManager&) = delete;
    QtManager& operator=(const QtManager&) = delete;

    void send(HttpExchange exchange, std::function<void(bool)> done) override;

private:
    void start(HttpExchange exchange, std::function<void(bool)> done);

    HttpQueue queue_;
    const QByteArray posted_ = QByteArray::fromStdString(postedJson());
    QNetworkRequest get_;
    QNetworkRequest post_;
    QThread thread_;
    QNetworkAccessManager* manager_;  ///< lives on the thread and ends with it
};

}  // namespace halvane::bench
