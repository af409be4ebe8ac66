#include "reports/templates.h"

#include "shell/config.h"
#include "shell/datadir.h"
#include "shell/home.h"
#include "shell/strings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace fenlark {

QString shippedTemplate(const QString &stem, const QString &extension)
{
    const QString language = StringTable::instance().language() == SpanishLanguage ? QStringLiteral("es") : QStringLiteral("en");
    const QString relative = QStringLiteral("templates/%1/%2.%3").arg(language, stem, extension);
    // An installed copy comes first, so a machine's administrator can put the
    // house style in place for every user; the compiled-in one is always there.
    const QString dataDir = installedDataDir();
    if (!dataDir.isEmpty() && QFileInfo(dataDir + QLatin1Char('/') + relative).isFile())
        return dataDir + QLatin1Char('/') + relative;
    const QString path = QStringLiteral(":/") + relative;
    return QFile::exists(path) ? path : QString();
}

QString findTemplate(const QString &stem, int dbNumber, const QStringList &extensions)
{
    const QString folder = config::templateDir();
    const QString base = folder + stem + (dbNumber > 0 ? QString::number(dbNumber) : QString());
    for (const QString &extension : extensions) {
        const QString path = base + QLatin1Char('.') + extension;
        if (QFileInfo::exists(path))
            return path;
    }
    const QString wanted = base + QLatin1Char('.') + extensions.value(0);
    const bool homeFolder = QFileInfo(folder).canonicalFilePath() == QFileInfo(Home::path()).canonicalFilePath();
    const QString shipped = shippedTemplate(stem, extensions.value(0));
    if (homeFolder && !shipped.isEmpty() && QFile::copy(shipped, wanted))
        QFile::setPermissions(wanted, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup | QFileDevice::ReadOther);
    return wanted;
}

} // namespace fenlark
