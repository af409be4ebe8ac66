#include "shell/errorlog.h"

#include "shell/home.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

namespace fenlark {

namespace {

// The message as one line of at most MaxMessageBytes, cut on a character boundary.
QByteArray oneLine(const QString &text)
{
    QString flat = text;
    flat.replace(QLatin1String("\r\n"), QLatin1String(" "));
    flat.replace(QLatin1Char('\r'), QLatin1Char(' '));
    flat.replace(QLatin1Char('\n'), QLatin1Char(' '));
    QByteArray bytes = flat.left(ErrorLog::MaxMessageBytes).toUtf8();
    if (bytes.size() > ErrorLog::MaxMessageBytes) {
        qsizetype cut = ErrorLog::MaxMessageBytes;
        // Step back over continuation bytes to the start of the character that would be split.
        while (cut > 0 && (static_cast<unsigned char>(bytes[cut]) & 0xC0) == 0x80)
            --cut;
        bytes.truncate(cut);
    }
    return bytes + '\n';
}

} // namespace

QString ErrorLog::path()
{
    return Home::file(QStringLiteral("fenlark.log"));
}

void ErrorLog::write(const QString &text)
{
    appendLine(path(), QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss ")) + text);
}

void ErrorLog::appendLine(const QString &filePath, const QString &text)
{
    const QByteArray line = oneLine(text);
    const QFileInfo info(filePath);
    if (info.exists() && info.size() + line.size() > MaxFileBytes) {
        const QString older = filePath + QStringLiteral(".1");
        QFile::remove(older);
        QFile::rename(filePath, older);
    }
    QFile file(filePath);
    if (!file.open(QIODevice::Append))
        return;
    file.write(line);
}

} // namespace fenlark
