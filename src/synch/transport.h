#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <memory>

class QNetworkAccessManager;

namespace fenlark {

// The query-string form of a text: digits and ASCII letters stay, every other
// code unit is cut to its low byte and written "%XX" (upper-case hexadecimal).
QString urlEncode(const QString &text);

// "http://host[:port]" for a bare Server value; a value that carries its own
// scheme ("https://host") is kept as it is. No trailing slash.
QString serverBase(const QString &server);

// The query keys every request carries about the property and the program.
struct ServerLogin {
    QString server;       // Server from vmconfig.ini
    qint32 bbid = 0;
    QString password;
    int versionNo = 0;    // the database's VersionNo
    QString versionText;  // the program's name and version, not yet encoded
};

// The URL of a normal exchange ("pcsynch"). The password goes through urlEncode like
// every other value, so "&", "#", "%", "+" and blanks in it reach the server whole.
QString synchUrl(const ServerLogin &login, const QString &action);
// The setup request ("s"), which also says what setup the PC holds.
QString setupUrl(const ServerLogin &login, const QDateTime &lastUpdated, const QString &synchCounter);
// The upgrade check.
QString upgradeUrl(const ServerLogin &login);
// A text fit for a log: the value of every "p=" in it, up to the next "&key=" or the
// end of the line, shows as "***", whether the URL was encoded or shown decoded.
QString redactPassword(const QString &url);
// The same, and every occurrence of the password itself (as typed or URL-encoded)
// becomes "***": for texts that may echo it, such as a server's error message.
QString redactPassword(const QString &text, const QString &password);

// Sixteen random digits that do not occur anywhere in data.
QString newBoundary(const QByteArray &data);
// The multipart form that carries one message under the field "mydata".
QByteArray buildMultipart(const QString &boundary, const QByteArray &data);

// A reply is read up to this size; a longer one fails before anything is parsed.
constexpr qint64 MaxReplyBytes = 64 * 1024 * 1024;

// What came back from one post.
struct PostResult {
    bool ok = false;       // a reply arrived (it may still be empty)
    bool timedOut = false;
    int httpStatus = 0;    // the server's HTTP status, 0 when none came
    QString reply;         // the reply as text
    QString error;         // why it failed, for the log (no password in it)
};

// The wire. The program posts through HttpTransport; tests may put anything that
// answers in its place.
class ServerTransport {
public:
    virtual ~ServerTransport() = default;
    // Posts the message as a multipart form and waits for the whole reply.
    virtual PostResult post(const QString &url, const QByteArray &message) = 0;
};

// A blocking post on Qt Network that keeps the event loop turning while it waits,
// so a progress dialog stays alive. A Proxy from the configuration ("host:port")
// is used when set. The reply is read as it arrives and given up past
// MaxReplyBytes, or when its declared length is already larger; an HTTP error, a
// time-out and a reply that is not UTF-8 are failures with their reason.
class HttpTransport : public ServerTransport {
public:
    static constexpr int DefaultTimeoutMs = 300 * 1000;

    explicit HttpTransport(int timeoutMs = DefaultTimeoutMs, const QString &proxy = {});
    ~HttpTransport() override;
    PostResult post(const QString &url, const QByteArray &message) override;

private:
    int m_timeoutMs;
    // One manager for the transport's life: the exchanges of a run share its
    // connection to the server instead of opening one each.
    std::unique_ptr<QNetworkAccessManager> m_manager;
};

} // namespace fenlark
