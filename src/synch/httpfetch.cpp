#include "synch/httpfetch.h"

#include "synch/transport.h"

#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <QUrl>

namespace fenlark {

HttpFetch::HttpFetch(int timeoutMs, const QString &proxy) : m_timeoutMs(timeoutMs), m_proxy(proxy.trimmed()) {}

FetchResult HttpFetch::get(const QString &url, qint64 limit)
{
    return run(url, false, limit);
}

FetchResult HttpFetch::postEmpty(const QString &url, qint64 limit)
{
    return run(url, true, limit);
}

FetchResult HttpFetch::run(const QString &url, bool post, qint64 limit)
{
    FetchResult result;
    QNetworkAccessManager manager;
    if (!m_proxy.isEmpty()) {
        const QUrl proxyUrl = QUrl::fromUserInput(m_proxy);
        manager.setProxy(QNetworkProxy(QNetworkProxy::HttpProxy, proxyUrl.host(), static_cast<quint16>(proxyUrl.port(8080))));
    }
    QNetworkRequest request{QUrl(url)};
    request.setTransferTimeout(m_timeoutMs);
    if (post)
        request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("text/plain"));
    QNetworkReply *reply = post ? manager.post(request, QByteArray()) : manager.get(request);

    QEventLoop loop;
    QTimer deadline;
    deadline.setSingleShot(true);
    auto take = [&] {
        result.body += reply->read(limit - result.body.size());
        if (result.body.size() >= limit && reply->bytesAvailable() > 0) {
            result.cut = true;
            reply->abort();
        }
    };
    QObject::connect(reply, &QNetworkReply::readyRead, &loop, take);
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QObject::connect(&deadline, &QTimer::timeout, &loop, [&] {
        result.timedOut = true;
        reply->abort();
    });
    deadline.start(m_timeoutMs);
    if (!reply->isFinished())
        loop.exec();
    deadline.stop();
    if (!result.cut)
        take();

    if (result.cut) {
        result.ok = true;
    } else if (reply->error() != QNetworkReply::NoError) {
        if (reply->error() == QNetworkReply::OperationCanceledError || reply->error() == QNetworkReply::TimeoutError)
            result.timedOut = true;
        result.error = redactPassword(reply->errorString());
        result.body.clear();
    } else {
        result.ok = true;
    }
    delete reply;
    return result;
}

} // namespace fenlark
