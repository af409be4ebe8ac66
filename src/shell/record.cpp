#include "shell/record.h"

namespace fenlark::recorddetail {

QString joinNames(const QStringList &names)
{
    return names.join(QStringLiteral(", "));
}

QString placeholders(int count)
{
    QStringList marks;
    for (int i = 0; i < count; ++i)
        marks << QStringLiteral("?");
    return marks.join(QLatin1Char(','));
}

} // namespace fenlark::recorddetail
