#include "shell/errorlog.h"

#include "shell/home.h"

#include <QDateTime>
#include <QFile>

namespace fenlark {

QString ErrorLog::path()
{
    return Home::file(QStringLiteral("fenlark.log"));
}

void ErrorLog::write(const QString &text)
{
    QFile file(path());
    if (!file.open(QIODevice::Append | QIODevice::Text))
        return;
    file.write(QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss ")).toUtf8());
    file.write(text.toUtf8());
    file.write("\n");
}

} // namespace fenlark
