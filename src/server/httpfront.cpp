#include "server/httpfront.h"

#include "server/referenceserver.h"
#include "server/storeworkers.h"
#include "synch/json.h"

#include <QCryptographicHash>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPointer>
#include <QRandomGenerator>
#include <QTcpServer>
#include <QTcpSocket>

#include <algorithm>

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

// Bodies up to this size are still taken once large ones have used LargeBodyBudget.
constexpr qint64 SmallBody = 1024 * 1024;

QByteArray jsonFailure(const QString &code, const QString &message)
{
    auto error = std::make_shared<JsonObject>();
    error->add(QStringLiteral("code"), code);
    error->add(QStringLiteral("message"), message);
    auto reply = std::make_shared<JsonObject>();
    reply->add(QStringLiteral("success"), JsonValue(false));
    reply->add(QStringLiteral("error"), JsonValue(error));
    return json::toString(JsonValue(reply)).toUtf8();
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

// What a worker made of one synchronisation request.
struct SynchAnswer {
    HttpResponse response;
    QString fault;
    enum class Login { NotAsked, Failed, Succeeded } login = Login::NotAsked;
};

SynchAnswer synchronisationAnswer(ReferenceServer &store, const HttpRequest &request)
{
    SynchAnswer answer;
    const QString action = request.text("a");
    const qint32 bbid = request.text("bbid").toInt();
    // The password as the desk puts it on the wire: the low byte of each character.
    const QString password = QString::fromLatin1(request.query.value("p"));
    QString reply;
    try {
        const bool known = action == QLatin1String("s") || action == QLatin1String("upgrade") || action == QLatin1String("pcsynch");
        if (known)
            answer.login = store.authenticate(bbid, password) ? SynchAnswer::Login::Succeeded : SynchAnswer::Login::Failed;
        if (action == QLatin1String("s")) {
            reply = store.handleSetup(bbid, password, request.text("pcsynchcounter"));
        } else if (action == QLatin1String("upgrade")) {
            reply = store.handleUpgrade(bbid, password);
        } else if (action == QLatin1String("pcsynch")) {
            // Faults act on the exchange only, so a run always gets past its setup check.
            answer.fault = store.takeFault();
            if (answer.fault == QLatin1String("fail")) {
                reply = QString::fromUtf8(jsonFailure(QStringLiteral("503"), QStringLiteral("The server is resting (injected failure)")));
            } else {
                const QByteArray message = multipartData(request.header("content-type"), request.body);
                reply = store.handlePcSynch(bbid, password, QString::fromUtf8(message));
            }
        } else {
            reply = QString::fromUtf8(jsonFailure(QStringLiteral("400"), QStringLiteral("Unknown action")));
        }
    } catch (const std::exception &) {
        reply = QString::fromUtf8(jsonFailure(QStringLiteral("500"), QStringLiteral("Server store failure")));
    }
    answer.response.body = applyReplyFault(answer.fault, reply).toUtf8();
    return answer;
}

// "/download/fenlark.json" describes the release on offer (version, package,
// notes); "/download/<package>" is the package itself.
HttpResponse answerDownload(ReferenceServer &store, const HttpRequest &request)
{
    HttpResponse response;
    const QString name = QString::fromUtf8(request.path.mid(10));
    const bool description = name == QLatin1String("fenlark.json");
    try {
        const UpgradeRelease release = store.offeredUpgrade(!description);
        if (!release.version.isEmpty() && description) {
            const QJsonObject offer{{QStringLiteral("version"), release.version},
                                    {QStringLiteral("package"), release.package},
                                    {QStringLiteral("notes"), release.notes}};
            response.contentType = "application/json";
            response.body = QJsonDocument(offer).toJson(QJsonDocument::Compact);
            return response;
        }
        if (!release.version.isEmpty() && name == release.package) {
            response.contentType = "application/vnd.debian.binary-package";
            response.body = release.bytes;
            return response;
        }
    } catch (const std::exception &) {
        response.status = 500;
        response.body = "Server store failure.";
        return response;
    }
    response.status = 404;
    response.body = "No such download.";
    return response;
}

HttpResponse answerAdmin(ReferenceServer &store, const HttpRequest &request)
{
    HttpResponse response;
    response.contentType = "application/json";
    const QString command = QString::fromUtf8(request.path.mid(7));
    const qint32 bbid = request.text("bbid").toInt();
    try {
        if (command == QLatin1String("booking")) {
            OnlineBooking b;
            b.roomId = request.text("room").toInt();
            b.fromDate = QDate::fromString(request.text("from"), Qt::ISODate);
            if (!b.fromDate.isValid())
                b.fromDate = QDate::currentDate().addDays(7);
            b.nights = std::max(1, request.text("nights").toInt());
            if (request.has("surname"))
                b.surname = request.text("surname");
            if (request.has("rate"))
                b.rate = request.text("rate").toDouble();
            const OnlineBookingIds ids = store.addOnlineBooking(bbid, b);
            response.body = QStringLiteral("{\"booking\":%1,\"guest\":%2,\"client\":%3,\"account\":%4}")
                                .arg(ids.booking).arg(ids.guest).arg(ids.client).arg(ids.account).toUtf8();
            return response;
        }
        if (command == QLatin1String("fault")) {
            const QString count = request.text("count");
            store.setFault(request.text("name"), count.isEmpty() ? 1 : count.toInt());
            response.body = "{\"ok\":true}";
            return response;
        }
        if (command == QLatin1String("delete")) {
            store.deleteRow(bbid, request.text("table"), request.text("tableid").toInt());
            response.body = "{\"ok\":true}";
            return response;
        }
    } catch (const std::exception &e) {
        response.status = 400;
        response.body = "{\"error\":\"" + QByteArray(e.what()).replace('"', '\'').replace('\\', '/') + "\"}";
        return response;
    }
    response.status = 404;
    response.body = "{\"error\":\"unknown admin command\"}";
    return response;
}

bool sameToken(const QByteArray &given, const QString &token)
{
    const QByteArray a = QCryptographicHash::hash(given, QCryptographicHash::Sha256);
    const QByteArray b = QCryptographicHash::hash(token.toLatin1(), QCryptographicHash::Sha256);
    unsigned char diff = 0;
    for (qsizetype i = 0; i < a.size(); ++i)
        diff |= static_cast<unsigned char>(a[i] ^ b[i]);
    return diff == 0 && !token.isEmpty();
}

} // namespace

HttpFront::HttpFront(const QString &storePath, QObject *parent) : QObject(parent), m_storePath(storePath) {}

HttpFront::~HttpFront()
{
    // The workers end first, so no answer arrives for a connection that is gone.
    m_workers.reset();
    const QSet<HttpConnection *> open = std::exchange(m_connections, {});
    qDeleteAll(open);
    if (!m_token.isEmpty())
        QFile::remove(tokenPath(m_storePath));
}

QString HttpFront::tokenPath(const QString &storePath)
{
    return storePath + QStringLiteral(".token");
}

quint16 HttpFront::listen(const QHostAddress &address, quint16 port)
{
    QByteArray random(32, Qt::Uninitialized);
    QRandomGenerator::system()->fillRange(reinterpret_cast<quint32 *>(random.data()), random.size() / 4);
    m_token = QString::fromLatin1(random.toHex());
    QFile file(tokenPath(m_storePath));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)
        || !file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner) || file.write(m_token.toLatin1()) < 0)
        return 0;
    file.close();

    m_workers = std::make_unique<StoreWorkers>(m_storePath, m_workerCount);
    m_listener = new QTcpServer(this);
    if (!m_listener->listen(address, port)) {
        delete m_listener;
        m_listener = nullptr;
        return 0;
    }
    connect(m_listener, &QTcpServer::newConnection, this, &HttpFront::accept);
    return m_listener->serverPort();
}

void HttpFront::accept()
{
    while (QTcpSocket *socket = m_listener->nextPendingConnection()) {
        if (static_cast<int>(m_connections.size()) >= m_maxConnections) {
            // Room for the newcomer is made by the connection that has waited idle longest.
            HttpConnection *idlest = nullptr;
            for (HttpConnection *c : std::as_const(m_connections)) {
                if (c->isWaiting() && (!idlest || c->idleFor() > idlest->idleFor()))
                    idlest = c;
            }
            if (!idlest) {
                socket->abort();
                socket->deleteLater();
                continue;
            }
            idlest->abort();
        }
        auto *connection = new HttpConnection(socket, m_limits, *this);
        connection->setParent(this);
        m_connections.insert(connection);
    }
}

void HttpFront::closed(HttpConnection &connection)
{
    m_connections.remove(&connection);
}

bool HttpFront::holdBodyBytes(qint64 delta, qint64 bodySoFar)
{
    if (delta <= 0) {
        m_heldBodyBytes += delta;
        return true;
    }
    const qint64 budget = bodySoFar > SmallBody ? m_limits.largeBodyBudget : m_limits.bodyBudget;
    if (m_heldBodyBytes + delta > budget)
        return false;
    m_heldBodyBytes += delta;
    return true;
}

bool HttpFront::adminAllowed(const HttpRequest &request) const
{
    // Only this machine, only a deliberate POST with the token, never a browser's
    // request on behalf of some page (those carry an Origin).
    return request.peer.isLoopback() && request.method == "POST" && !request.headers.contains("origin")
        && sameToken(request.header("x-fenlark-token"), m_token);
}

void HttpFront::dispatch(HttpConnection &connection, HttpRequest request)
{
    const QByteArray path = request.path;
    if (path == "/moorgate/Synchronisation") {
        answerSynchronisation(connection, std::move(request));
        return;
    }
    if (path.startsWith("/admin/")) {
        if (!adminAllowed(request)) {
            HttpResponse refused;
            refused.status = 403;
            refused.body = "Admin commands need a POST from this machine with the server's token.";
            refused.close = true;
            connection.respond(refused);
            return;
        }
        QPointer<HttpConnection> target(&connection);
        m_workers->post([this, target, request = std::move(request)](ReferenceServer &store) {
            const HttpResponse response = answerAdmin(store, request);
            QMetaObject::invokeMethod(this, [target, response] {
                if (target)
                    target->respond(response);
            }, Qt::QueuedConnection);
        });
        return;
    }
    if (path.startsWith("/download/")) {
        QPointer<HttpConnection> target(&connection);
        m_workers->post([this, target, request = std::move(request)](ReferenceServer &store) {
            const HttpResponse response = answerDownload(store, request);
            QMetaObject::invokeMethod(this, [target, response] {
                if (target)
                    target->respond(response);
            }, Qt::QueuedConnection);
        });
        return;
    }
    HttpResponse response;
    if (path == "/moorgate/paymoorgate") {
        response.contentType = "text/html; charset=utf-8";
        response.body = QStringLiteral("<html><body><h1>Online payment</h1><p>Property %1: online payment is not taken by this server.</p></body></html>")
                            .arg(request.text("bbid").toInt())
                            .toUtf8();
    } else {
        response.status = 404;
        response.body = "Not found.";
    }
    connection.respond(response);
}

void HttpFront::answerSynchronisation(HttpConnection &connection, HttpRequest request)
{
    const QString address = request.peer.toString();
    const qint64 waitMs = m_throttle.waitFor(address);
    if (waitMs > 0) {
        HttpResponse slowed;
        slowed.body = jsonFailure(QStringLiteral("429"), QStringLiteral("Too many failed log-ons from this address: try again in %1 seconds.")
                                                             .arg((waitMs + 999) / 1000));
        connection.respond(slowed);
        return;
    }
    QPointer<HttpConnection> target(&connection);
    const int stallMs = m_stallMs;
    m_workers->post([this, target, address, stallMs, request = std::move(request)](ReferenceServer &store) {
        const SynchAnswer answer = synchronisationAnswer(store, request);
        QMetaObject::invokeMethod(this, [this, target, address, stallMs, answer] {
            if (answer.login == SynchAnswer::Login::Failed)
                m_throttle.failed(address);
            else if (answer.login == SynchAnswer::Login::Succeeded)
                m_throttle.succeeded(address);
            if (!target)
                return;
            if (answer.fault == QLatin1String("drop"))
                target->abort();
            else if (answer.fault == QLatin1String("stall"))
                target->stall(stallMs);
            else
                target->respond(answer.response);
        }, Qt::QueuedConnection);
    });
}

} // namespace fenlark::server
