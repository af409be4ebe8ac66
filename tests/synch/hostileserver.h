#pragma once

#include <QByteArray>
#include <QList>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUrlQuery>

#include <functional>

// A whole HTTP answer: status line, headers, body. Honest about its length unless
// told otherwise through extraHeaders and a body that differs.
inline QByteArray httpAnswer(const QByteArray &body, int status = 200, const QByteArray &reason = "OK",
                             const QByteArray &headers = {})
{
    QByteArray head = "HTTP/1.1 " + QByteArray::number(status) + ' ' + reason + "\r\nContent-Type: text/plain; charset=utf-8\r\n";
    if (!headers.contains("Content-Length"))
        head += "Content-Length: " + QByteArray::number(body.size()) + "\r\n";
    return head + headers + "Connection: close\r\n\r\n" + body;
}

// A server gone bad, on loopback: it answers the setup request with "nothing has
// changed" (echoing the desk's own counter, so the setup stays as it is) unless a
// setup answer is given, and every exchange with the answer it was given, or with
// a reply that never ends.
class HostileServer {
public:
    HostileServer()
    {
        m_server.listen(QHostAddress::LocalHost);
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
            while (QTcpSocket *socket = m_server.nextPendingConnection())
                serve(socket);
        });
    }

    quint16 port() const { return m_server.serverPort(); }
    QString address() const { return QStringLiteral("127.0.0.1:%1").arg(port()); }

    void answerExchanges(const QByteArray &answer)
    {
        m_exchange = answer;
        m_endless = false;
    }
    // 200 with no length, then the given opening and its repeated piece for as long as the client reads.
    void answerEndlessly(const QByteArray &opening, const QByteArray &piece)
    {
        m_endless = true;
        m_opening = opening;
        m_piece = piece;
    }
    void answerSetup(const QByteArray &answer) { m_setup = answer; }

    // What the desk sent: the target of each request as it came, and the multipart body of each exchange.
    QList<QByteArray> targets;
    QList<QByteArray> bodies;

private:
    void serve(QTcpSocket *socket)
    {
        auto *buffer = new QByteArray;
        QObject::connect(socket, &QObject::destroyed, [buffer] { delete buffer; });
        QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket, buffer] {
            *buffer += socket->readAll();
            const qsizetype headEnd = buffer->indexOf("\r\n\r\n");
            if (headEnd < 0)
                return;
            const QByteArray head = buffer->left(headEnd);
            const qsizetype lengthAt = head.toLower().indexOf("content-length:");
            const qint64 length = lengthAt < 0 ? 0 : head.mid(lengthAt + 15, head.indexOf('\r', lengthAt) - lengthAt - 15).trimmed().toLongLong();
            if (buffer->size() < headEnd + 4 + length)
                return;
            const QByteArray target = head.split(' ').value(1);
            const QUrlQuery query(QString::fromLatin1(target.mid(target.indexOf('?') + 1)));
            targets << target;
            const QByteArray body = buffer->mid(headEnd + 4, length);
            buffer->clear();
            if (query.queryItemValue(QStringLiteral("a")) == QLatin1String("s")) {
                socket->write(m_setup.isEmpty() ? httpAnswer("{\"success\":true,\"synconly\":"
                                                             + query.queryItemValue(QStringLiteral("pcsynchcounter")).toLatin1() + '}')
                                                : m_setup);
                socket->disconnectFromHost();
                return;
            }
            bodies << body;
            if (!m_endless) {
                socket->write(m_exchange);
                socket->disconnectFromHost();
                return;
            }
            socket->write("HTTP/1.1 200 OK\r\nContent-Type: text/plain; charset=utf-8\r\nConnection: close\r\n\r\n" + m_opening);
            QObject::connect(socket, &QTcpSocket::bytesWritten, socket, [this, socket] {
                while (socket->bytesToWrite() < 4 * 1024 * 1024)
                    socket->write(m_piece);
            });
        });
    }

    QTcpServer m_server;
    QByteArray m_setup;
    QByteArray m_exchange;
    bool m_endless = false;
    QByteArray m_opening;
    QByteArray m_piece;
};
