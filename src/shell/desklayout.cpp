#include "shell/desklayout.h"

#include "shell/home.h"
#include "shell/inifile.h"

#include <QStringList>

namespace fenlark {

namespace {

const QString WindowSection = QStringLiteral("Windows");
const QString ColumnSection = QStringLiteral("Columns");

} // namespace

QString DeskLayout::path()
{
    return Home::file(QStringLiteral("desk.ini"));
}

QByteArray DeskLayout::geometry(const QString &window)
{
    const QByteArray text = IniFile(path()).read(WindowSection, window, QString()).toLatin1();
    const auto decoded = QByteArray::fromBase64Encoding(text, QByteArray::AbortOnBase64DecodingErrors);
    return decoded ? *decoded : QByteArray();
}

void DeskLayout::setGeometry(const QString &window, const QByteArray &geometry)
{
    IniFile(path()).write(WindowSection, window, QString::fromLatin1(geometry.toBase64()));
}

QList<int> DeskLayout::columnWidths(const QString &grid, int columns)
{
    const QStringList parts = IniFile(path()).read(ColumnSection, grid, QString()).split(QLatin1Char(','), Qt::SkipEmptyParts);
    if (parts.size() != columns)
        return {};
    QList<int> widths;
    for (const QString &part : parts) {
        bool ok = false;
        const int width = part.trimmed().toInt(&ok);
        if (!ok || width < MinimumWidth || width > MaximumWidth)
            return {};
        widths << width;
    }
    return widths;
}

void DeskLayout::setColumnWidths(const QString &grid, const QList<int> &widths)
{
    QStringList parts;
    for (int width : widths)
        parts << QString::number(width);
    IniFile(path()).write(ColumnSection, grid, parts.join(QLatin1Char(',')));
}

} // namespace fenlark
