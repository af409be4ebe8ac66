#include "reports/reporttsv.h"

#include "reports/reportfailures.h"
#include "reports/reportsheet.h"

#include <QSaveFile>
#include <QStringList>

namespace fenlark {

QString reportTsv(const ReportSheet &sheet)
{
    QStringList lines;
    lines.reserve(sheet.rowCount());
    for (int row = 1; row <= sheet.rowCount(); ++row) {
        if (row == 1) {
            lines << sheet.plainTitle();
            continue;
        }
        QStringList cells;
        const int last = sheet.lastColumn(row);
        for (int column = 1; column <= last; ++column)
            cells << sheet.plainText(row, column);
        lines << cells.join(QLatin1Char('\t'));
    }
    while (!lines.isEmpty() && lines.constLast().trimmed().isEmpty())
        lines.removeLast();
    return lines.join(QLatin1Char('\n'));
}

Outcome writeReportTsv(const ReportSheet &sheet, const QString &path)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return reportNotWritten(path, file.errorString());
    QByteArray text = reportTsv(sheet).toUtf8();
    text += '\n';
    if (file.write(text) != text.size() || !file.commit())
        return reportNotWritten(path, file.errorString());
    return Done{};
}

} // namespace fenlark
