#pragma once

#include <QByteArray>
#include <QString>

namespace fenlark {

// What one plain request brought back.
struct FetchResult {
    bool ok = false;        // the server answered with success (the body may be empty)
    bool timedOut = false;
    bool cut = false;       // the body was longer than asked for and was cut there
    QByteArray body;
    QString error;          // why it failed, for the log and the messages
};

// A plain request without the multipart form of the exchanges: the upgrade
// question (a POST with no body) and the files under "/download" (GET). Like
// HttpTransport it keeps the event loop turning while it waits, and uses the
// Proxy of the configuration when one is set.
class HttpFetch {
public:
    explicit HttpFetch(int timeoutMs, const QString &proxy = {});

    // Reads at most limit bytes of the body: a longer one is cut there and the
    // connection dropped, so a server that sends without end costs no memory.
    FetchResult get(const QString &url, qint64 limit);
    FetchResult postEmpty(const QString &url, qint64 limit);

private:
    FetchResult run(const QString &url, bool post, qint64 limit);

    int m_timeoutMs;
    QString m_proxy;
};

} // namespace fenlark
