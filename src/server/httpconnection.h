#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QHash>
#include <QHostAddress>
#include <QObject>
#include <QTimer>

class QTcpSocket;

namespace fenlark::server {

// What a client may send, and how long it may take.
struct HttpLimits {
    qint64 maxBodyBytes = 64 * 1024 * 1024;
    qsizetype maxHeaderBytes = 64 * 1024;
    // A connection that moves no byte for this long is closed; so is one whose
    // request head takes longer than this in all.
    int idleMs = 30 * 1000;
    // Body bytes held across all connections; past largeBodyBudget only bodies
    // under a MiB are still taken, so a few large senders cannot block the rest.
    qint64 bodyBudget = 512LL * 1024 * 1024;
    qint64 largeBodyBudget = 448LL * 1024 * 1024;
};

// One request as read off the wire.
struct HttpRequest {
    QByteArray method;
    QByteArray path;                         // percent-decoded
    QHash<QByteArray, QByteArray> query;     // names and values percent-decoded to bytes
    QHash<QByteArray, QByteArray> headers;   // names in lower case
    QByteArray body;
    QHostAddress peer;

    QByteArray header(const QByteArray &lowerName) const { return headers.value(lowerName); }
    // A query value read as UTF-8 text.
    QString text(const char *name) const { return QString::fromUtf8(query.value(name)); }
    bool has(const char *name) const { return query.contains(name); }
};

struct HttpResponse {
    int status = 200;
    QByteArray contentType = "text/plain; charset=utf-8";
    QByteArray body;
    bool close = false;  // end the connection once it is written
};

// The side of the server that a connection reports to.
class HttpConnectionOwner {
public:
    virtual ~HttpConnectionOwner() = default;
    // A whole request to answer; the answer comes back through HttpConnection::respond.
    virtual void dispatch(class HttpConnection &connection, HttpRequest request) = 0;
    // Asks for room for more body bytes across all connections (negative gives
    // room back); false refuses them.
    virtual bool holdBodyBytes(qint64 delta, qint64 bodySoFar) = 0;
    virtual void closed(HttpConnection &connection) = 0;
};

// One client connection: reads requests one at a time within HttpLimits, answers
// them in order, keeps the connection for the next one unless either side said
// "close", and gives up on a client that stalls. Data the client sends while its
// request is being answered waits in the socket, whose buffer is kept small.
class HttpConnection : public QObject {
public:
    HttpConnection(QTcpSocket *socket, const HttpLimits &limits, HttpConnectionOwner &owner);

    // The answer to the request handed out by dispatch.
    void respond(const HttpResponse &response);
    // Holds the answer back and drops the connection after ms (a fault for tests).
    void stall(int ms);
    // Ends the connection at once.
    void abort();

    // True while the connection waits for a client's next request.
    bool isWaiting() const { return m_state == State::Head && m_in.isEmpty(); }
    // Milliseconds since the client or the server last moved a byte.
    qint64 idleFor() const { return m_lastActivity.elapsed(); }
    QHostAddress peer() const { return m_peer; }

private:
    enum class State { Head, Body, Answering, Closing };

    void readMore();
    bool readHead();
    void readBody();
    void refuse(int status, const QByteArray &text);
    void closeAfterAnswer();
    void write(const HttpResponse &response);
    void touch();
    void closeNow();
    void releaseBody();

    QTcpSocket *m_socket;
    HttpLimits m_limits;
    HttpConnectionOwner &m_owner;
    QHostAddress m_peer;
    State m_state = State::Head;
    QByteArray m_in;
    HttpRequest m_request;
    qint64 m_bodyLength = 0;
    qint64 m_bodyHeld = 0;     // body bytes counted with the owner
    bool m_keepAlive = true;
    bool m_closedReported = false;
    qint64 m_drained = 0;
    QTimer m_idle;
    QTimer m_headDeadline;
    QElapsedTimer m_lastActivity;
};

// "%41b+c" -> "Ab+c" as bytes ("+" stays a plus: the desk encodes blanks as %20).
QByteArray percentDecode(const QByteArray &text);

} // namespace fenlark::server
