#pragma once

#include "server/httpconnection.h"
#include "server/loginthrottle.h"

#include <QHostAddress>
#include <QObject>
#include <QSet>

#include <memory>

class QTcpServer;

namespace fenlark::server {

class StoreWorkers;

// The reference server on HTTP: the synchronisation actions under
// "/moorgate/Synchronisation", the payment-link page, "/download", and admin
// commands under "/admin/". It reads and writes every connection on its own
// thread and leaves the store's work to a few workers, within limits that keep
// hostile clients from starving the others: bodies up to 64 MiB (a longer one is
// refused on its declared length), heads up to 64 KiB, 30 s of silence, a cap on
// connections (the longest idle one makes room for a new one) and on the body
// bytes held at once. Repeated failed log-ons from one address are slowed down.
// Admin commands are taken only from this machine, as a POST carrying the token
// that listen() writes beside the store, and never from a web page (no Origin).
// The fault switches of the store act here, on the wire.
class HttpFront : public QObject, private HttpConnectionOwner {
public:
    explicit HttpFront(const QString &storePath, QObject *parent = nullptr);
    ~HttpFront() override;

    // Before listen():
    void setLimits(const HttpLimits &limits) { m_limits = limits; }
    void setWorkers(int count) { m_workerCount = count; }
    void setMaxConnections(int count) { m_maxConnections = count; }
    // How long a stalled reply holds the connection before dropping it.
    void setStallMs(int ms) { m_stallMs = ms; }

    // Starts the workers, writes the admin token and listens; answers the port
    // (useful with 0, "any free port"), or 0 when the address cannot be had.
    quint16 listen(const QHostAddress &address, quint16 port);

    // The file listen() writes the admin token into: "<store>.token", owner-only.
    static QString tokenPath(const QString &storePath);
    QString adminToken() const { return m_token; }
    int connectionCount() const { return static_cast<int>(m_connections.size()); }

private:
    void accept();
    void dispatch(HttpConnection &connection, HttpRequest request) override;
    bool holdBodyBytes(qint64 delta, qint64 bodySoFar) override;
    void closed(HttpConnection &connection) override;
    bool adminAllowed(const HttpRequest &request) const;
    void answerSynchronisation(HttpConnection &connection, HttpRequest request);

    QString m_storePath;
    HttpLimits m_limits;
    int m_workerCount = 2;
    int m_maxConnections = 1000;
    int m_stallMs = 10 * 60 * 1000;
    QString m_token;
    QTcpServer *m_listener = nullptr;
    std::unique_ptr<StoreWorkers> m_workers;
    QSet<HttpConnection *> m_connections;
    qint64 m_heldBodyBytes = 0;
    LoginThrottle m_throttle;
};

// The message inside a multipart form ("mydata"), or the whole body when it is not one.
QByteArray multipartData(const QByteArray &contentType, const QByteArray &body);

} // namespace fenlark::server
