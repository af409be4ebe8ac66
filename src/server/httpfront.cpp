#include "server/httpfront.h"

#include "server/referenceserver.h"
#include "synch/json.h"

#include <QHttpServerRequest>
#include <QJsonDocument>
#include <QJsonObject>
#include <QHttpServerResponder>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <QUrlQuery>

#include <algorithm>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace fenlark::server {

QByteArray multipartData(const QByteArray &contentType, const QByteArray &body)
{
    const int at = contentType.indexOf("boundary=");
    if (at < 0)
        return body;
    QByteArray boundary = contentType.mid(at + 9).trimmed();
    if (boundary.startsWith('"') && boundary.endsWith('"') && boundary.size() >= 2)
        boundary = boundary.mid(1, boundary.size() - 2);
    const QByteArray open = "--" + boundary;
    const qsizetype start = body.indexOf(open);
    if (start < 0)
        return body;
    const qsizetype headersEnd = body.indexOf("\r\n\r\n", start);
    if (headersEnd < 0)
        return QByteArray();
    const qsizetype dataStart = headersEnd + 4;
    qsizetype dataEnd = body.indexOf("\r\n" + open, dataStart);
    if (dataEnd < 0)
        dataEnd = body.size();
    return body.mid(dataStart, dataEnd - dataStart);
}

namespace {

QByteArray header(const QHttpServerRequest &request, const QByteArray &name)
{
    for (const auto &h : request.headers()) {
        if (h.first.compare(name, Qt::CaseInsensitive) == 0)
            return h.second;
    }
    return QByteArray();
}

// Rewrites a good reply the way a faulty server would.
QString applyReplyFault(const QString &fault, const QString &reply)
{
    if (fault == QLatin1String("garbled"))
        return QStringLiteral("<html><body>502 Bad Gateway {{[[\"") + reply.mid(7, 40);
    if (fault == QLatin1String("truncated"))
        return reply.left(std::max<qsizetype>(1, reply.size() / 2));
    if (fault != QLatin1String("duplicate-acks") && fault != QLatin1String("shuffle"))
        return reply;
    JsonValue value = json::parse(reply);
    JsonValue data = value[QStringLiteral("data")];
    if (!data.isObject())
        return reply;
    if (fault == QLatin1String("duplicate-acks")) {
        for (const QString &list : {QStringLiteral("acknowledgements"), QStringLiteral("logupdates")}) {
            JsonArray *items = data[list].array();
            if (items)
                items->append(JsonArray(*items));
        }
    } else if (JsonArray *updates = data[QStringLiteral("logupdates")].array()) {
        std::reverse(updates->begin(), updates->end());
    }
    return json::toString(value);
}

// Acknowledges every piece of a request at once. A client that writes its body in
// pieces without TCP_NODELAY (Qt's own does) otherwise waits on the kernel's
// delayed acknowledgement, some 40 ms, once per exchange.
class QuickAckServer : public QTcpServer {
public:
    using QTcpServer::QTcpServer;

protected:
    void incomingConnection(qintptr descriptor) override
    {
        auto *socket = new QTcpSocket(this);
        if (!socket->setSocketDescriptor(descriptor)) {
            delete socket;
            return;
        }
#ifdef TCP_QUICKACK
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [socket] {
            const int on = 1;
            setsockopt(static_cast<int>(socket->socketDescriptor()), IPPROTO_TCP, TCP_QUICKACK, &on, sizeof on);
        });
#endif
        addPendingConnection(socket);
    }
};

} // namespace

HttpFront::HttpFront(ReferenceServer &store, QObject *parent) : QAbstractHttpServer(parent), m_store(store) {}

quint16 HttpFront::listen(const QHostAddress &address, quint16 port)
{
    auto *server = new QuickAckServer(this);
    if (!server->listen(address, port)) {
        delete server;
        return 0;
    }
    bind(server);
    return server->serverPort();
}

QString HttpFront::synchronisation(const QHttpServerRequest &request, QString &fault)
{
    const QUrlQuery query = request.query();
    const QString action = query.queryItemValue(QStringLiteral("a"));
    const qint32 bbid = query.queryItemValue(QStringLiteral("bbid")).toInt();
    const QString password = query.queryItemValue(QStringLiteral("p"), QUrl::FullyDecoded);
    if (action == QLatin1String("s"))
        return m_store.handleSetup(bbid, password, query.queryItemValue(QStringLiteral("pcsynchcounter")));
    if (action == QLatin1String("upgrade"))
        return m_store.handleUpgrade(bbid, password);
    if (action == QLatin1String("pcsynch")) {
        // Faults act on the exchange only, so a run always gets past its setup check.
        fault = m_store.takeFault();
        if (fault == QLatin1String("fail"))
            return QStringLiteral("{\"success\":false,\"error\":{\"code\":\"503\",\"message\":\"The server is resting (injected failure)\"}}");
        const QByteArray message = multipartData(header(request, "Content-Type"), request.body());
        return m_store.handlePcSynch(bbid, password, QString::fromUtf8(message));
    }
    return QStringLiteral("{\"success\":false,\"error\":{\"code\":\"400\",\"message\":\"Unknown action\"}}");
}

QString HttpFront::admin(const QHttpServerRequest &request, int &status)
{
    const QUrlQuery q = request.query();
    const QString command = request.url().path().mid(7);
    const qint32 bbid = q.queryItemValue(QStringLiteral("bbid")).toInt();
    status = 200;
    try {
        if (command == QLatin1String("booking")) {
            OnlineBooking b;
            b.roomId = q.queryItemValue(QStringLiteral("room")).toInt();
            b.fromDate = QDate::fromString(q.queryItemValue(QStringLiteral("from")), Qt::ISODate);
            if (!b.fromDate.isValid())
                b.fromDate = QDate::currentDate().addDays(7);
            b.nights = std::max(1, q.queryItemValue(QStringLiteral("nights")).toInt());
            if (q.hasQueryItem(QStringLiteral("surname")))
                b.surname = q.queryItemValue(QStringLiteral("surname"), QUrl::FullyDecoded);
            if (q.hasQueryItem(QStringLiteral("rate")))
                b.rate = q.queryItemValue(QStringLiteral("rate")).toDouble();
            const OnlineBookingIds ids = m_store.addOnlineBooking(bbid, b);
            return QStringLiteral("{\"booking\":%1,\"guest\":%2,\"client\":%3,\"account\":%4}")
                .arg(ids.booking).arg(ids.guest).arg(ids.client).arg(ids.account);
        }
        if (command == QLatin1String("fault")) {
            const QString count = q.queryItemValue(QStringLiteral("count"));
            m_store.setFault(q.queryItemValue(QStringLiteral("name")), count.isEmpty() ? 1 : count.toInt());
            return QStringLiteral("{\"ok\":true}");
        }
        if (command == QLatin1String("delete")) {
            m_store.deleteRow(bbid, q.queryItemValue(QStringLiteral("table")), q.queryItemValue(QStringLiteral("tableid")).toInt());
            return QStringLiteral("{\"ok\":true}");
        }
    } catch (const ServerError &e) {
        status = 400;
        return QStringLiteral("{\"error\":\"%1\"}").arg(QString::fromUtf8(e.what()).replace(QLatin1Char('"'), QLatin1Char('\'')));
    }
    status = 404;
    return QStringLiteral("{\"error\":\"unknown admin command\"}");
}

bool HttpFront::handleRequest(const QHttpServerRequest &request, QTcpSocket *socket)
{
    const QString path = request.url().path();
    if (path == QLatin1String("/moorgate/Synchronisation")) {
        QString fault;
        QString reply;
        try {
            reply = synchronisation(request, fault);
        } catch (const ServerError &e) {
            reply = QStringLiteral("{\"success\":false,\"error\":{\"code\":\"500\",\"message\":\"Server store failure\"}}");
        }
        if (fault == QLatin1String("drop")) {
            socket->abort();
            return true;
        }
        if (fault == QLatin1String("stall")) {
            QPointer<QTcpSocket> held(socket);
            QTimer::singleShot(m_stallMs, socket, [held] {
                if (held)
                    held->abort();
            });
            return true;
        }
        makeResponder(request, socket).write(applyReplyFault(fault, reply).toUtf8(), "text/plain; charset=utf-8");
        return true;
    }
    if (path.startsWith(QLatin1String("/admin/"))) {
        if (!socket->peerAddress().isLoopback()) {
            makeResponder(request, socket).write(QHttpServerResponder::StatusCode::Forbidden);
            return true;
        }
        int status = 200;
        const QString body = admin(request, status);
        makeResponder(request, socket).write(body.toUtf8(), "application/json", static_cast<QHttpServerResponder::StatusCode>(status));
        return true;
    }
    if (path == QLatin1String("/moorgate/paymoorgate")) {
        const QString bbid = QString::number(request.query().queryItemValue(QStringLiteral("bbid")).toInt());
        makeResponder(request, socket).write(
            QStringLiteral("<html><body><h1>Online payment</h1><p>Property %1: online payment is not taken by this server.</p></body></html>")
                .arg(bbid)
                .toUtf8(),
            "text/html; charset=utf-8");
        return true;
    }
    if (path.startsWith(QLatin1String("/download"))) {
        download(request, socket);
        return true;
    }
    return false;
}

void HttpFront::download(const QHttpServerRequest &request, QTcpSocket *socket)
{
    const QString name = request.url().path().mid(10);
    const bool description = name == QLatin1String("fenlark.json");
    const UpgradeRelease release = m_store.offeredUpgrade(!description);
    if (!release.version.isEmpty() && description) {
        const QJsonObject offer{{QStringLiteral("version"), release.version},
                                {QStringLiteral("package"), release.package},
                                {QStringLiteral("notes"), release.notes}};
        makeResponder(request, socket).write(QJsonDocument(offer).toJson(QJsonDocument::Compact), "application/json");
        return;
    }
    if (!release.version.isEmpty() && name == release.package) {
        makeResponder(request, socket).write(release.bytes, "application/vnd.debian.binary-package");
        return;
    }
    makeResponder(request, socket).write(QByteArray("No such download."), "text/plain", QHttpServerResponder::StatusCode::NotFound);
}

void HttpFront::missingHandler(const QHttpServerRequest &request, QTcpSocket *socket)
{
    makeResponder(request, socket).write(QHttpServerResponder::StatusCode::NotFound);
}

} // namespace fenlark::server
