#include "QtManager.h"

#include <QMetaObject>
#include <QNetworkReply>
#include <QUrl>

#include <utility>

namespace halvane::bench {

QtManager::QtManager(const std::string& url) : get_(QUrl(QString::fromStdString(url))), manager_(new QNetworkAccessManager) {
    get_.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);  // as all the others
    post_ = get_;
    post_.setHeader(QNetworkRequest::ContentTypeHeader, "application/json; charset=utf-8");
    manager_->setAutoDeleteReplies(true);
    manager_->moveToThread(&thread_);
    QObject::connect(&thread_, &QThread::finished, manager_, &QObject::deleteLater);
    thread_.start();
}

QtManager::~QtManager() {
    thread_.quit();
    thread_.wait();
}

void QtManager::send(HttpExchange exchange, std::function<void(bool)> done) {
    QMetaObject::invokeMethod(
        manager_, [this, exchange, done = std::move(done)]() mutable { start(exchange, std::move(done)); }, Qt::QueuedConnection);
}

void QtManager::start(HttpExchange exchange, std::function<void(bool)> done) {
    QNetworkReply* reply = exchange == HttpExchange::Post ? manager_->post(post_, posted_) : manager_->get(get_);
    QObject::connect(reply, &QNetworkReply::finished, manager_, [this, reply, done = std::move(done)]() mutable {
        const bool whole = reply->error() == QNetworkReply::NoError;
        queue_.async([done = std::move(done), whole, body = reply->readAll()] { done(whole && !body.isEmpty()); });
    });
}

}  // namespace halvane::bench
