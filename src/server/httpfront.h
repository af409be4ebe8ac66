#pragma once

#include <QAbstractHttpServer>
#include <QHostAddress>

namespace fenlark::server {

class ReferenceServer;

// The reference server on HTTP: the synchronisation actions under
// "/moorgate/Synchronisation", the payment-link page, "/download", and admin
// commands under "/admin/" for callers on this machine. The fault switches of the
// store act here, on the wire.
class HttpFront : public QAbstractHttpServer {
public:
    explicit HttpFront(ReferenceServer &store, QObject *parent = nullptr);
    // Starts listening; answers the port (useful with 0, "any free port"), or 0
    // when the address cannot be had.
    quint16 listen(const QHostAddress &address, quint16 port);
    // How long a stalled reply holds the connection before dropping it.
    void setStallMs(int ms) { m_stallMs = ms; }

protected:
    bool handleRequest(const QHttpServerRequest &request, QTcpSocket *socket) override;
    void missingHandler(const QHttpServerRequest &request, QTcpSocket *socket) override;

private:
    QString synchronisation(const QHttpServerRequest &request, QString &fault);
    QString admin(const QHttpServerRequest &request, int &status);
    // "/download/fenlark.json" describes the release on offer; "/download/<package>" is the package.
    void download(const QHttpServerRequest &request, QTcpSocket *socket);

    ReferenceServer &m_store;
    int m_stallMs = 10 * 60 * 1000;
};

// The message inside a multipart form ("mydata"), or the whole body when it is not one.
QByteArray multipartData(const QByteArray &contentType, const QByteArray &body);

} // namespace fenlark::server
