#include "desk/demo.h"

#include "shell/database.h"
#include "shell/databasefiles.h"
#include "shell/errorlog.h"
#include "shell/home.h"
#include "desk/propertygenerator.h"
#include "shell/setuprecords.h"

#include <QDir>

namespace fenlark {

QString Demo::homeFolder(const QString &explicitHome)
{
    if (!explicitHome.isEmpty())
        return Home::resolve(explicitHome);
    return QDir(Home::resolve()).filePath(QStringLiteral("demo"));
}

bool Demo::prepare()
{
    try {
        auto db = Database::open(getDBPath(0));
        if (BBSetup::isSetupEmpty(*db))
            PropertyGenerator(PropertyGenerator::demo()).generate(*db);
        return true;
    } catch (const std::exception &e) {
        ErrorLog::write(QStringLiteral("Could not prepare the demo database: ") + QString::fromUtf8(e.what()));
        return false;
    }
}

} // namespace fenlark
