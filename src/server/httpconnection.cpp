#include "server/httpconnection.h"

#include <QTcpSocket>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace fenlark::server {

namespace {

// What the socket reads ahead of the request being read; the rest waits in the kernel.
constexpr qint64 SocketBufferBytes = 256 * 1024;
// After a closing answer, how long and how much the client may still send.
constexpr int LingerMs = 2000;
constexpr qint64 MaxDrainBytes = 8 * 1024 * 1024;

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

QByteArray reasonPhrase(int status)
{
    switch (status) {
    case 100: return "Continue";
    case 200: return "OK";
    case 400: return "Bad Request";
    case 403: return "Forbidden";
    case 404: return "Not Found";
    case 405: return "Method Not Allowed";
    case 411: return "Length Required";
    case 413: return "Content Too Large";
    case 431: return "Request Header Fields Too Large";
    case 503: return "Service Unavailable";
    default: return "Status";
    }
}

// Splits "a=1&b=2" into decoded names and values.
QHash<QByteArray, QByteArray> parseQuery(const QByteArray &query)
{
    QHash<QByteArray, QByteArray> items;
    for (const QByteArray &pair : query.split('&')) {
        if (pair.isEmpty())
            continue;
        const qsizetype eq = pair.indexOf('=');
        const QByteArray name = percentDecode(eq < 0 ? pair : pair.left(eq));
        // The first of a repeated name counts, as the desk sends each name once.
        if (!items.contains(name))
            items.insert(name, eq < 0 ? QByteArray() : percentDecode(pair.mid(eq + 1)));
    }
    return items;
}

} // namespace

QByteArray percentDecode(const QByteArray &text)
{
    QByteArray out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '%' && i + 2 < text.size() && hexValue(text[i + 1]) >= 0 && hexValue(text[i + 2]) >= 0) {
            out += static_cast<char>(hexValue(text[i + 1]) * 16 + hexValue(text[i + 2]));
            i += 2;
        } else {
            out += c;
        }
    }
    return out;
}

HttpConnection::HttpConnection(QTcpSocket *socket, const HttpLimits &limits, HttpConnectionOwner &owner)
    : m_socket(socket), m_limits(limits), m_owner(owner), m_peer(socket->peerAddress())
{
    m_socket->setParent(this);
    m_socket->setReadBufferSize(SocketBufferBytes);
    // A reply's last piece goes at once instead of waiting for the client to
    // acknowledge the one before (which a client may delay by 40 ms).
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_lastActivity.start();
    m_idle.setSingleShot(true);
    m_idle.setInterval(m_limits.idleMs);
    m_headDeadline.setSingleShot(true);
    m_headDeadline.setInterval(m_limits.idleMs);
    connect(&m_idle, &QTimer::timeout, this, [this] {
        // While this server works on the answer the client is not the idle one.
        if (m_state == State::Answering)
            m_idle.start();
        else
            abort();
    });
    connect(&m_headDeadline, &QTimer::timeout, this, [this] {
        if (m_state == State::Head && !m_in.isEmpty())
            abort(); // a head sent a byte at a time
    });
    connect(m_socket, &QTcpSocket::readyRead, this, [this] {
#ifdef TCP_QUICKACK
        // Acknowledge every piece at once: a client that writes its body in pieces
        // would otherwise wait on the kernel's delayed acknowledgement each time.
        const int on = 1;
        setsockopt(static_cast<int>(m_socket->socketDescriptor()), IPPROTO_TCP, TCP_QUICKACK, &on, sizeof on);
#endif
        readMore();
    });
    connect(m_socket, &QTcpSocket::bytesWritten, this, [this] { touch(); });
    connect(m_socket, &QTcpSocket::disconnected, this, [this] { closeNow(); });
    connect(m_socket, &QTcpSocket::errorOccurred, this, [this] {
        if (m_socket->state() != QAbstractSocket::ConnectedState)
            closeNow();
    });
    m_idle.start();
    if (m_socket->bytesAvailable() > 0)
        QMetaObject::invokeMethod(this, [this] { readMore(); }, Qt::QueuedConnection);
}

void HttpConnection::touch()
{
    m_lastActivity.restart();
    if (m_state != State::Closing)
        m_idle.start();
}

void HttpConnection::readMore()
{
    if (m_state == State::Closing) {
        // What a refused client still sends is read and dropped, so that the close
        // reaches it as an end and not as a reset that could swallow the answer.
        m_drained += m_socket->skip(m_socket->bytesAvailable());
        if (m_drained > MaxDrainBytes)
            abort();
        return;
    }
    while (m_state == State::Head || m_state == State::Body) {
        if (m_state == State::Head) {
            const qint64 room = m_limits.maxHeaderBytes + 4 - m_in.size();
            if (room > 0 && m_socket->bytesAvailable() > 0) {
                const QByteArray more = m_socket->read(room);
                if (!more.isEmpty()) {
                    touch();
                    if (m_in.isEmpty())
                        m_headDeadline.start();
                    m_in += more;
                }
            }
            if (!readHead())
                return;
        } else {
            readBody();
            if (m_state == State::Body)
                return;
        }
    }
}

bool HttpConnection::readHead()
{
    const qsizetype end = m_in.indexOf("\r\n\r\n");
    if (end < 0 || end + 4 > m_limits.maxHeaderBytes) {
        if (m_in.size() > m_limits.maxHeaderBytes)
            refuse(431, "The request head is longer than 64 KiB.");
        return false;
    }
    m_headDeadline.stop();
    const QList<QByteArray> lines = m_in.left(end).split('\n');
    const QList<QByteArray> start = lines.value(0).trimmed().split(' ');
    if (start.size() != 3 || !start[2].startsWith("HTTP/1.")) {
        refuse(400, "A request line is METHOD TARGET HTTP/1.x.");
        return false;
    }
    m_request = HttpRequest();
    m_request.peer = m_peer;
    m_request.method = start[0];
    const QByteArray target = start[1];
    const qsizetype question = target.indexOf('?');
    m_request.path = percentDecode(question < 0 ? target : target.left(question));
    if (question >= 0)
        m_request.query = parseQuery(target.mid(question + 1));
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const QByteArray line = lines[i].trimmed();
        const qsizetype colon = line.indexOf(':');
        if (colon <= 0) {
            refuse(400, "A header line is NAME: VALUE.");
            return false;
        }
        const QByteArray name = line.left(colon).trimmed().toLower();
        const QByteArray value = line.mid(colon + 1).trimmed();
        if (m_request.headers.contains(name) && m_request.headers.value(name) != value && name == "content-length") {
            refuse(400, "Two different lengths for one body.");
            return false;
        }
        m_request.headers.insert(name, value);
    }
    if (m_request.headers.contains("transfer-encoding")) {
        refuse(411, "Send the body with a Content-Length.");
        return false;
    }
    m_bodyLength = 0;
    if (m_request.headers.contains("content-length")) {
        const QByteArray text = m_request.header("content-length");
        bool ok = !text.isEmpty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
        m_bodyLength = ok ? text.toLongLong(&ok) : 0;
        if (!ok) {
            refuse(400, "The Content-Length is no length.");
            return false;
        }
    }
    if (m_bodyLength > m_limits.maxBodyBytes) {
        // Refused on the length it declares, before a byte of it is read.
        refuse(413, "The body is longer than 64 MiB.");
        return false;
    }
    const QByteArray connection = m_request.header("connection").toLower();
    m_keepAlive = start[2] == "HTTP/1.1" ? !connection.contains("close") : connection.contains("keep-alive");
    if (m_request.header("expect").toLower() == "100-continue")
        m_socket->write("HTTP/1.1 100 Continue\r\n\r\n");

    const qint64 taken = std::min<qint64>(m_bodyLength, m_in.size() - end - 4);
    m_in.remove(0, end + 4);
    m_request.body = m_in.left(taken);
    m_in.remove(0, taken);
    m_state = State::Body;
    if (!m_request.body.isEmpty()) {
        if (!m_owner.holdBodyBytes(m_request.body.size(), m_request.body.size())) {
            refuse(503, "The server is busy; try again shortly.");
            return false;
        }
        m_bodyHeld = m_request.body.size();
    }
    return true;
}

void HttpConnection::readBody()
{
    const qint64 need = m_bodyLength - m_request.body.size();
    if (need > 0 && m_socket->bytesAvailable() > 0) {
        const QByteArray more = m_socket->read(need);
        if (!more.isEmpty()) {
            touch();
            if (!m_owner.holdBodyBytes(more.size(), m_request.body.size() + more.size())) {
                refuse(503, "The server is busy; try again shortly.");
                return;
            }
            m_bodyHeld += more.size();
            m_request.body += more;
        }
    }
    if (m_request.body.size() < m_bodyLength)
        return;
    m_state = State::Answering;
    m_owner.dispatch(*this, std::move(m_request));
    m_request = HttpRequest();
}

void HttpConnection::respond(const HttpResponse &response)
{
    if (m_state != State::Answering)
        return;
    releaseBody();
    write(response);
    if (response.close || !m_keepAlive) {
        closeAfterAnswer();
        return;
    }
    m_state = State::Head;
    // A request the client sent behind this one is read now.
    QMetaObject::invokeMethod(this, [this] { readMore(); }, Qt::QueuedConnection);
}

void HttpConnection::stall(int ms)
{
    releaseBody();
    QTimer::singleShot(ms, this, [this] { abort(); });
}

void HttpConnection::refuse(int status, const QByteArray &text)
{
    releaseBody();
    HttpResponse response;
    response.status = status;
    response.body = text;
    response.close = true;
    write(response);
    closeAfterAnswer();
}

void HttpConnection::closeAfterAnswer()
{
    m_state = State::Closing;
    m_idle.stop();
    m_headDeadline.stop();
    const auto endSending = [this] {
        if (m_socket->bytesToWrite() == 0)
            ::shutdown(static_cast<int>(m_socket->socketDescriptor()), SHUT_WR);
    };
    connect(m_socket, &QTcpSocket::bytesWritten, this, endSending);
    m_socket->flush();
    endSending();
    QTimer::singleShot(LingerMs, this, [this] { abort(); });
    readMore();
}

void HttpConnection::write(const HttpResponse &response)
{
    const bool close = response.close || !m_keepAlive;
    QByteArray head = "HTTP/1.1 " + QByteArray::number(response.status) + ' ' + reasonPhrase(response.status) + "\r\n";
    head += "Content-Type: " + response.contentType + "\r\n";
    head += "Content-Length: " + QByteArray::number(response.body.size()) + "\r\n";
    head += close ? "Connection: close\r\n\r\n" : "Connection: keep-alive\r\n\r\n";
    m_socket->write(head);
    m_socket->write(response.body);
    touch();
}

void HttpConnection::abort()
{
    m_socket->abort();
    closeNow();
}

void HttpConnection::closeNow()
{
    if (m_closedReported)
        return;
    m_closedReported = true;
    releaseBody();
    m_idle.stop();
    m_headDeadline.stop();
    m_state = State::Closing;
    m_owner.closed(*this);
    deleteLater();
}

void HttpConnection::releaseBody()
{
    if (m_bodyHeld == 0)
        return;
    m_owner.holdBodyBytes(-m_bodyHeld, 0);
    m_bodyHeld = 0;
}

} // namespace fenlark::server
