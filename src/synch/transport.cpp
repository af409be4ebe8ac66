#include "synch/transport.h"

#include "shell/strings.h"

#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QStringDecoder>
#include <QTimer>
#include <QUrl>

#include <algorithm>
#include <utility>

namespace fenlark {

QString urlEncode(const QString &text)
{
    static const char hex[] = "0123456789ABCDEF";
    QString out;
    out.reserve(text.size() * 3);
    for (const QChar ch : text) {
        const unsigned char b = static_cast<unsigned char>(ch.unicode() & 0xFF);
        if ((b >= '0' && b <= '9') || (b >= 'A' && b <= 'Z') || (b >= 'a' && b <= 'z')) {
            out += QLatin1Char(static_cast<char>(b));
        } else {
            out += QLatin1Char('%');
            out += QLatin1Char(hex[b >> 4]);
            out += QLatin1Char(hex[b & 15]);
        }
    }
    return out;
}

QString serverBase(const QString &server)
{
    QString base = server.trimmed();
    while (base.endsWith(QLatin1Char('/')))
        base.chop(1);
    if (base.startsWith(QLatin1String("http://"), Qt::CaseInsensitive)
        || base.startsWith(QLatin1String("https://"), Qt::CaseInsensitive))
        return base;
    return QStringLiteral("http://") + base;
}

namespace {

QString loginQuery(const ServerLogin &login, const QString &action)
{
    return serverBase(login.server) + QStringLiteral("/moorgate/Synchronisation?a=") + action
        + QStringLiteral("&bbid=") + QString::number(login.bbid) + QStringLiteral("&p=") + urlEncode(login.password);
}

} // namespace

QString synchUrl(const ServerLogin &login, const QString &action)
{
    return loginQuery(login, action) + QStringLiteral("&version=") + QString::number(login.versionNo)
        + QStringLiteral("&moorgateversion=") + urlEncode(login.versionText);
}

QString setupUrl(const ServerLogin &login, const QDateTime &lastUpdated, const QString &synchCounter)
{
    return synchUrl(login, QStringLiteral("s")) + QStringLiteral("&pclastupdated=")
        + urlEncode(lastUpdated.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"))) + QStringLiteral("&pcsynchcounter=")
        + synchCounter;
}

QString upgradeUrl(const ServerLogin &login)
{
    return loginQuery(login, QStringLiteral("upgrade"));
}

QString redactPassword(const QString &url)
{
    // Everything after "p=" up to the next "&key=": a URL shown decoded may hold
    // blanks or "&" of the password itself, and none of it may reach a log.
    static const QRegularExpression password(QStringLiteral("([?&]p=)(?:(?!&[A-Za-z0-9_]+=).)*"));
    QString out = url;
    out.replace(password, QStringLiteral("\\1***"));
    return out;
}

QString redactPassword(const QString &text, const QString &password)
{
    QString out = redactPassword(text);
    if (password.isEmpty())
        return out;
    for (const QString &form : {password, urlEncode(password), QString::fromLatin1(QUrl::toPercentEncoding(password))}) {
        if (!form.isEmpty())
            out.replace(form, QStringLiteral("***"));
    }
    return out;
}

QString newBoundary(const QByteArray &data)
{
    while (true) {
        QString boundary;
        for (int i = 0; i < 16; ++i)
            boundary += QLatin1Char(static_cast<char>('0' + QRandomGenerator::global()->bounded(10)));
        if (!data.contains(boundary.toLatin1()))
            return boundary;
    }
}

QByteArray buildMultipart(const QString &boundary, const QByteArray &data)
{
    const QByteArray b = boundary.toLatin1();
    QByteArray body;
    body.reserve(data.size() + 200);
    body += "--" + b + "\r\n";
    body += "Content-Disposition: form-data; name=\"mydata\"; filename=\"\"\r\n";
    body += "Content-Type: application/octet-stream\r\n";
    body += "\r\n";
    body += data;
    body += "\r\n--" + b + "--\r\n";
    return body;
}

HttpTransport::HttpTransport(int timeoutMs, const QString &proxy)
    : m_timeoutMs(timeoutMs), m_manager(std::make_unique<QNetworkAccessManager>())
{
    if (!proxy.trimmed().isEmpty()) {
        const QUrl proxyUrl = QUrl::fromUserInput(proxy.trimmed());
        m_manager->setProxy(QNetworkProxy(QNetworkProxy::HttpProxy, proxyUrl.host(), static_cast<quint16>(proxyUrl.port(8080))));
    }
}

HttpTransport::~HttpTransport() = default;

namespace {

// Why an HTTP exchange failed, in words fit for a log.
QString failureText(QNetworkReply &reply, int status)
{
    if (status > 0 && (status < 200 || status > 299)) {
        const QString phrase = reply.attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString().left(60);
        return getString(6040, QStringLiteral("The server answered HTTP %1 %2")).arg(status).arg(phrase).trimmed();
    }
    if (status > 0)
        return getString(6045, QStringLiteral("The server's reply broke off: ")) + redactPassword(reply.errorString());
    return redactPassword(reply.errorString());
}

} // namespace

PostResult HttpTransport::post(const QString &url, const QByteArray &message)
{
    PostResult result;
    const QString boundary = newBoundary(message);
    QNetworkRequest request{QUrl(url)};
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("multipart/form-data; boundary=") + boundary);
    request.setTransferTimeout(m_timeoutMs);
    // The message goes to the configured server or nowhere.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    QNetworkReply *reply = m_manager->post(request, buildMultipart(boundary, message));
    // Qt Network holds no more than this unread; the rest waits in the socket.
    reply->setReadBufferSize(1024 * 1024);

    QByteArray body;
    bool tooLarge = false;
    const auto giveUpIfTooLarge = [&](qint64 size) {
        if (size > MaxReplyBytes && !tooLarge) {
            tooLarge = true;
            reply->abort();
        }
    };
    const auto readSome = [&] {
        if (tooLarge || !reply->isOpen())
            return;
        // Asked for what is there only: read() sets aside as much as it is asked for.
        body += reply->read(std::min(reply->bytesAvailable(), MaxReplyBytes + 1 - body.size()));
        giveUpIfTooLarge(body.size());
    };

    QEventLoop loop;
    QTimer deadline;
    deadline.setSingleShot(true);
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QObject::connect(reply, &QNetworkReply::metaDataChanged, &loop, [&] {
        const QVariant declared = reply->header(QNetworkRequest::ContentLengthHeader);
        if (declared.isValid())
            giveUpIfTooLarge(declared.toLongLong());
    });
    QObject::connect(reply, &QNetworkReply::readyRead, &loop, readSome);
    QObject::connect(&deadline, &QTimer::timeout, &loop, [&] {
        result.timedOut = true;
        reply->abort();
    });
    deadline.start(m_timeoutMs);
    if (!reply->isFinished())
        loop.exec();
    deadline.stop();
    readSome();

    result.httpStatus = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (tooLarge) {
        result.error = getString(6041, QStringLiteral("The server's reply is larger than 64 MiB."));
    } else if (reply->error() == QNetworkReply::OperationCanceledError || reply->error() == QNetworkReply::TimeoutError) {
        result.timedOut = true;
        result.error = redactPassword(reply->errorString());
    } else if (reply->error() != QNetworkReply::NoError || result.httpStatus < 200 || result.httpStatus > 299) {
        result.error = failureText(*reply, result.httpStatus);
    } else {
        // A reply that is not UTF-8 is refused whole rather than read with
        // replacement characters that would then be stored as names.
        QStringDecoder decoder(QStringDecoder::Utf8);
        result.reply = decoder.decode(std::exchange(body, QByteArray()));
        if (decoder.hasError()) {
            result.reply.clear();
            result.error = getString(6032, QStringLiteral("The server's reply is not valid UTF-8 text."));
        } else {
            result.ok = true;
        }
    }
    delete reply;
    return result;
}

} // namespace fenlark
