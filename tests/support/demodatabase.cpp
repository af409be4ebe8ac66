#include "support/demodatabase.h"

#include "desk/propertygenerator.h"
#include "shell/home.h"

#include <QFile>

namespace {

QString demoTemplate()
{
    static QTemporaryDir dir;
    static const QString path = [] {
        const QString file = dir.filePath(QStringLiteral("demo.db"));
        auto db = fenlark::Database::open(file);
        fenlark::PropertyGenerator(fenlark::PropertyGenerator::demo()).generate(*db);
        return file;
    }();
    return path;
}

} // namespace

DemoDatabase::DemoDatabase()
{
    const QString copy = m_dir.filePath(QStringLiteral("test.db"));
    QFile::copy(demoTemplate(), copy);
    fenlark::Home::setPath(m_dir.path());
    m_db = fenlark::Database::open(copy);
}
