#include "shell/home.h"

#include <QDir>
#include <QStandardPaths>
#include <QStringList>

namespace fenlark {

namespace {
QString &currentHome()
{
    static QString home;
    return home;
}
} // namespace

QString Home::resolve(const QString &explicitDir)
{
    if (!explicitDir.isEmpty())
        return QDir(explicitDir).absolutePath();
    const QString fromEnv = qEnvironmentVariable("FENLARK_HOME");
    if (!fromEnv.isEmpty())
        return QDir(fromEnv).absolutePath();
    QString xdg = qEnvironmentVariable("XDG_DATA_HOME");
    if (xdg.isEmpty())
        xdg = QDir::homePath() + QStringLiteral("/.local/share");
    return QDir(xdg).absoluteFilePath(QStringLiteral("fenlark"));
}

QString Home::path()
{
    if (currentHome().isEmpty())
        currentHome() = resolve();
    return currentHome();
}

void Home::setPath(const QString &dir)
{
    currentHome() = QDir(dir).absolutePath();
    QDir().mkpath(currentHome());
}

QString Home::file(const QString &name)
{
    return QDir(path()).filePath(name);
}

QString Home::takeHomeArgument(QStringList &args)
{
    const int at = args.indexOf(QStringLiteral("--home"));
    if (at < 0 || at + 1 >= args.size())
        return {};
    const QString dir = args.at(at + 1);
    args.remove(at, 2);
    return dir;
}

} // namespace fenlark
