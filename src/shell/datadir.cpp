#include "shell/datadir.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace fenlark {

QString dataDirBeside(const QString &programDir)
{
    return QDir::cleanPath(programDir + QStringLiteral("/../share/fenlark"));
}

QString installedDataDir()
{
    const QString fromEnvironment = qEnvironmentVariable("FENLARK_DATA_DIR");
    if (!fromEnvironment.isEmpty())
        return QFileInfo(fromEnvironment).isDir() ? QDir::cleanPath(fromEnvironment) : QString();
    if (!QCoreApplication::instance())
        return QString();
    const QString beside = dataDirBeside(QCoreApplication::applicationDirPath());
    return QFileInfo(beside).isDir() ? beside : QString();
}

} // namespace fenlark
