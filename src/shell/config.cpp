#include "shell/config.h"

#include "shell/home.h"
#include "shell/inifile.h"

#include <QDir>

namespace fenlark {

namespace {
const QString Section = QStringLiteral("Param");
}

QString configPath()
{
    return Home::file(QStringLiteral("vmconfig.ini"));
}

QString readConfig(const QString &key, const QString &defaultValue)
{
    return IniFile(configPath()).read(Section, key, defaultValue).left(ConfigValueLimit);
}

bool writeConfig(const QString &key, const QString &value)
{
    return IniFile(configPath()).write(Section, key, value);
}

QString fromHome(const QString &path)
{
    return path.isEmpty() ? path : QDir::cleanPath(QDir(Home::path()).absoluteFilePath(path));
}

namespace config {

namespace {
QString withSlash(QString dir)
{
    if (!dir.endsWith(QLatin1Char('/')))
        dir += QLatin1Char('/');
    return dir;
}
} // namespace

QString templateDir()
{
    return withSlash(fromHome(readConfig(QStringLiteral("TemplateDir"), Home::path())));
}

QString logDir()
{
    return fromHome(readConfig(QStringLiteral("LogDir"), Home::path()));
}

int logLimit()
{
    bool ok = false;
    const int limit = readConfig(QStringLiteral("LogLimit"), QStringLiteral("300")).trimmed().toShort(&ok);
    return ok && limit > 0 ? limit : 300;
}

QString defaultServer()
{
    return QStringLiteral("localhost:8642");
}

QString server()
{
    return readConfig(QStringLiteral("Server"), defaultServer()).trimmed();
}

QString proxy()
{
    return readConfig(QStringLiteral("Proxy"), QString()).trimmed();
}

QString invoiceDir(int dbNumber)
{
    const QString key = dbNumber > 0 ? QStringLiteral("InvoiceDir%1").arg(dbNumber) : QStringLiteral("InvoiceDir");
    QString dir = readConfig(key, QString()).trimmed();
    if (dir.isEmpty()) {
        // Written relative to the home folder, so a home folder moved elsewhere keeps its invoices.
        dir = dbNumber > 0 ? QStringLiteral("invoices%1").arg(dbNumber) : QStringLiteral("invoices");
        QDir(Home::path()).mkpath(dir);
        writeConfig(key, dir);
    }
    return fromHome(dir);
}

} // namespace config

} // namespace fenlark
