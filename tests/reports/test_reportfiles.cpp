// The sheet model and its two writers: the tab-separated text, and the .xlsx
// workbook checked by unzipping it.
#include "reports/reportcatalogue.h"
#include "reports/reporttable.h"
#include "reports/reporttsv.h"
#include "reports/reportxlsx.h"
#include "reportfixture.h"

#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QRegularExpression>
#include <QtTest>

#include <zip.h>

using namespace fenlark;

namespace {

// One member of a zip file; empty when it is not there.
QByteArray zipEntry(const QString &path, const char *name)
{
    int error = 0;
    zip_t *archive = zip_open(QFile::encodeName(path).constData(), ZIP_RDONLY, &error);
    if (!archive)
        return {};
    QByteArray data;
    zip_stat_t stat;
    if (zip_stat(archive, name, 0, &stat) == 0) {
        if (zip_file_t *file = zip_fopen(archive, name, 0)) {
            data.resize(static_cast<qsizetype>(stat.size));
            if (zip_fread(file, data.data(), stat.size) != static_cast<zip_int64_t>(stat.size))
                data.clear();
            zip_fclose(file);
        }
    }
    zip_close(archive);
    return data;
}

// The XML of one cell, "<c r="B4" ...>...</c>" (or the empty form).
QString cellXml(const QString &sheetXml, const QString &address)
{
    const QRegularExpression cell(QStringLiteral("<c r=\"%1\"[^>]*?(/>|>.*?</c>)").arg(address));
    return cell.match(sheetXml).captured(0);
}

// A date as the spreadsheet counts it: days since 30 December 1899.
int serial(const QDate &date)
{
    return static_cast<int>(QDate(1899, 12, 30).daysTo(date));
}

// A table of two money columns with a row total, as the Debtors report lays one out.
ReportSheet agedTable(const std::vector<std::pair<double, double>> &rows, bool withFilter)
{
    ReportSheet sheet;
    sheet.setTitle(QStringLiteral("Aged"));
    ReportTable table(sheet, 3,
                      {{QStringLiteral("Name")},
                       {QStringLiteral("Current"), ColumnKind::Money, true},
                       {QStringLiteral("Older"), ColumnKind::Money, true},
                       {QStringLiteral("Total"), ColumnKind::Money, true}});
    for (const auto &[current, older] : rows) {
        table.addRow();
        table.text(1, QStringLiteral("client"));
        table.number(2, current);
        table.number(3, older);
        table.rowSum(4, 2, 3);
    }
    table.finish(withFilter);
    return sheet;
}

// A file an earlier report left at path.
void writeOldReport(const QString &path)
{
    QFile old(path);
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write("an older report");
}

} // namespace

class TestReportFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sumsCarryFormulasAndTheValuesOfTheirCells()
    {
        const ReportSheet sheet = agedTable({{2.675, 2}, {0.1, 0.2}, {-3, 0}}, false);
        // Money is rounded to the cent when it is put in: 2.675 is 2.67499... in binary.
        QCOMPARE(sheet.value(4, 2), 2.67);
        QCOMPARE(ReportSheet::formula(*sheet.cell(4, 4)), QStringLiteral("=SUM(B4:C4)"));
        QCOMPARE(sheet.value(4, 4), 4.67);
        // Under the data, after a blank row: sums of the columns, the totals' too.
        QVERIFY(!sheet.cell(7, 2) || sheet.cell(7, 2)->kind == SheetCell::Empty);
        QCOMPARE(ReportSheet::formula(*sheet.cell(8, 2)), QStringLiteral("=SUM(B4:B6)"));
        QCOMPARE(ReportSheet::formula(*sheet.cell(8, 4)), QStringLiteral("=SUM(D4:D6)"));
        QCOMPARE(sheet.plainText(8, 2), QStringLiteral("-0.23"));
        QCOMPARE(sheet.plainText(8, 4), QStringLiteral("1.97"));
        QVERIFY(sheet.cell(8, 4)->bold);
        QVERIFY(!sheet.hasAutoFilter());
        QCOMPARE(sheet.dataRows(), 3);
    }

    void filteredTablesSubtotalAndFilterTheirHeadingsAndData()
    {
        const ReportSheet sheet = agedTable({{1, 2}, {3, 4}}, true);
        QCOMPARE(ReportSheet::formula(*sheet.cell(7, 3)), QStringLiteral("=SUBTOTAL(9,C4:C5)"));
        QCOMPARE(sheet.value(7, 3), 6.0);
        QCOMPARE(sheet.autoFilter().address(), QStringLiteral("A3:D5"));
    }

    void cellsAsPlainText_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("text");
        QTest::newRow("money") << int(ColumnKind::Money) << QVariant(1234.5) << "1234.50";
        QTest::newRow("a negative zero") << int(ColumnKind::Money) << QVariant(-0.001) << "0.00";
        QTest::newRow("a rate") << int(ColumnKind::Number) << QVariant(13.25) << "13.25";
        QTest::newRow("a key") << int(ColumnKind::Number) << QVariant(1000000) << "1000000";
        QTest::newRow("a date") << int(ColumnKind::Date) << QVariant(QDate(2028, 2, 29)) << "29/02/2028";
        QTest::newRow("a moment") << int(ColumnKind::DateTime) << QVariant(QDateTime(QDate(2026, 3, 1), QTime(23, 59, 59)))
                                  << "01/03/2026 23:59:59";
        QTest::newRow("lines and tabs") << int(ColumnKind::Notes) << QVariant("Late\r\narrival\tby\ncar")
                                        << "Late arrival by car";
    }

    void cellsAsPlainText()
    {
        QFETCH(int, kind);
        QFETCH(QVariant, value);
        QFETCH(QString, text);
        ReportSheet sheet;
        ReportTable table(sheet, 3, {{QStringLiteral("x"), ColumnKind(kind)}});
        table.addRow();
        switch (ColumnKind(kind)) {
        case ColumnKind::Date:
            table.date(1, value.toDate());
            break;
        case ColumnKind::DateTime:
            table.dateTime(1, value.toDateTime().date(), value.toDateTime().time());
            break;
        case ColumnKind::Text:
        case ColumnKind::Notes:
            table.text(1, value.toString());
            break;
        case ColumnKind::Number:
        case ColumnKind::Money:
            table.number(1, value.toDouble());
            break;
        }
        QCOMPARE(sheet.plainText(4, 1), text);
    }

    void tabSeparatedTextKeepsTheLayoutWithThePlainTitle()
    {
        ReportSheet sheet = agedTable({{1, 2}}, false);
        sheet.setPlainTitle(QStringLiteral("Aged between"));
        sheet.setText(12, 1, QStringLiteral("   "));   // blank lines at the end are dropped
        QCOMPARE(reportTsv(sheet), QStringLiteral("Aged between\n\nName\tCurrent\tOlder\tTotal\nclient\t1.00\t2.00\t3.00\n"
                                                  "\n\t1.00\t2.00\t3.00"));
    }

    void workbookHoldsRealDatesFormulasWithValuesTheFilterAndOnePageWide()
    {
        TestDatabase t;
        reportfixture::seed(t.db());
        ReportCriteria criteria = defaultCriteria(report::BookingSummary, QDate(2026, 3, 18));
        const auto sheet = runReport(t.db(), report::BookingSummary, criteria);
        QVERIFY(sheet.ok());
        const QString path = t.file(QStringLiteral("summary.xlsx"));
        QVERIFY(writeReportXlsx(*sheet, path).ok());

        const QString xml = QString::fromUtf8(zipEntry(path, "xl/worksheets/sheet1.xml"));
        QVERIFY(!xml.isEmpty());
        QVERIFY(xml.contains(QStringLiteral("<autoFilter ref=\"A3:Y9\"/>")));
        QVERIFY(xml.contains(QStringLiteral("<pageSetUpPr fitToPage=\"1\"/>")));
        QVERIFY(xml.contains(QStringLiteral("<pageSetup fitToHeight=\"0\" orientation=\"landscape\"/>")));
        QVERIFY(xml.contains(QStringLiteral("<selection activeCell=\"A4\" sqref=\"A4\"/>")));
        // Sums as formulas with their values: Revenue of the six legs.
        QVERIFY2(cellXml(xml, QStringLiteral("X11")).contains(QStringLiteral("<f>SUBTOTAL(9,X4:X9)</f><v>2746.5</v>")),
                 qPrintable(cellXml(xml, QStringLiteral("X11"))));
        // The arrival of the first stay is a number, the day's serial, in a date format.
        const QString arrival = cellXml(xml, QStringLiteral("B4"));
        QVERIFY2(arrival.contains(QStringLiteral("<v>%1</v>").arg(serial(QDate(2026, 2, 27)))), qPrintable(arrival));
        QVERIFY(!arrival.contains(QStringLiteral("t=\"s\"")));
        const QString styles = QString::fromUtf8(zipEntry(path, "xl/styles.xml"));
        QVERIFY(styles.contains(QStringLiteral("formatCode=\"dd/mm/yyyy\"")));
        QVERIFY(styles.contains(QStringLiteral("formatCode=\"_ * #,##0.00_ ;_ * -#,##0.00_ \"")));
        // Texts as written, escaped where XML needs it; the title bold and larger.
        const QString strings = QString::fromUtf8(zipEntry(path, "xl/sharedStrings.xml"));
        QVERIFY(strings.contains(QStringLiteral("Bookings Report from 01/03/2026 to 31/03/2026")));
        QVERIFY(strings.contains(QStringLiteral("<t>Acme &amp; Sons</t>")));
        QVERIFY(strings.contains(QStringLiteral("<t>Ms Ana Núñez</t>")));
        QVERIFY(styles.contains(QStringLiteral("<sz val=\"12\"/>")));
    }

    // The spreadsheet program recalculates the sums on opening and must come to
    // the same figures as the values stored with them.
    void aSpreadsheetProgramOpensItAndAddsUpTheSame()
    {
        const QString soffice = QStandardPaths::findExecutable(QStringLiteral("soffice"));
        if (soffice.isEmpty())
            QSKIP("LibreOffice is not installed");
        TestDatabase t;
        reportfixture::seed(t.db());
        const auto sheet = runReport(t.db(), report::BookingSummary, defaultCriteria(report::BookingSummary, QDate(2026, 3, 18)));
        QVERIFY(sheet.ok());
        const QString path = t.file(QStringLiteral("summary.xlsx"));
        QVERIFY(writeReportXlsx(*sheet, path).ok());
        QProcess office;
        office.start(soffice, {QStringLiteral("-env:UserInstallation=file://") + t.file(QStringLiteral("office")),
                               QStringLiteral("--headless"), QStringLiteral("--convert-to"), QStringLiteral("csv"),
                               QStringLiteral("--outdir"), t.home(), path});
        QVERIFY(office.waitForFinished(240000));
        QFile csv(t.file(QStringLiteral("summary.csv")));
        QVERIFY2(csv.open(QIODevice::ReadOnly), qPrintable(office.readAllStandardError()));
        const QStringList lines = QString::fromUtf8(csv.readAll()).split(QLatin1Char('\n'));
        QVERIFY(lines.size() >= 11);
        QCOMPARE(lines.at(0).section(QLatin1Char(','), 0, 0), QStringLiteral("Bookings Report from 01/03/2026 to 31/03/2026"));
        QCOMPARE(lines.at(2).section(QLatin1Char(','), 0, 2), QStringLiteral("Booking ID,Arrive Date,Last Night"));
        QCOMPARE(lines.at(10).trimmed(), QStringLiteral(",,,,,8,1,,13,150,,,,,,,,,,,,,,2746.5,2596.5"));
    }

    void columnsFitTheirContentAndNotesKeepTheirWidth()
    {
        TestDatabase t;
        reportfixture::seed(t.db());
        ReportCriteria criteria = defaultCriteria(report::SecurityAudit, QDate(2026, 3, 18));
        const auto sheet = runReport(t.db(), report::SecurityAudit, criteria);
        QVERIFY(sheet.ok());
        // "01/03/2026 00:00:00" is the widest cell of the first column; the long
        // title does not widen it.
        QCOMPARE(fittedColumnWidth(*sheet, 1), 21.0);
        QCOMPARE(fittedColumnWidth(*sheet, 3), 40.0);
        const QString path = t.file(QStringLiteral("audit.xlsx"));
        QVERIFY(writeReportXlsx(*sheet, path).ok());
        const QString xml = QString::fromUtf8(zipEntry(path, "xl/worksheets/sheet1.xml"));
        QVERIFY(xml.contains(QStringLiteral("<col min=\"3\" max=\"3\" width=\"40.7109375\" customWidth=\"1\"/>")));
        QVERIFY(xml.contains(QStringLiteral("<pageSetup fitToHeight=\"0\" orientation=\"portrait\"/>")));
        QVERIFY(QString::fromUtf8(zipEntry(path, "xl/styles.xml")).contains(QStringLiteral("wrapText=\"1\"")));
    }

    void aWorkbookReplacesAnOldFileWholeAndLeavesNothingElse()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("report.xlsx"));
        writeOldReport(path);
        QVERIFY(writeReportXlsx(agedTable({{1, 2}}, true), path).ok());
        QVERIFY(!zipEntry(path, "xl/worksheets/sheet1.xml").isEmpty());
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("report.xlsx")});
        QVERIFY(QFileInfo(path).permissions() & QFileDevice::ReadOther);
    }

    void aStoppedWorkbookLeavesTheOldFileAndNoPart()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("report.xlsx"));
        writeOldReport(path);
        const ReportSheet sheet = agedTable({{1, 2}, {3, 4}, {5, 6}}, true);
        qint64 rows = 0;
        Progress stopAtTheThird([&](qint64 done, qint64 total, const QString &) {
            rows = total;
            return done < 3;
        });
        const Outcome written = writeReportXlsx(sheet, path, stopAtTheThird);
        QCOMPARE(written.refusal().id(), 5306);
        QCOMPARE(rows, qint64(sheet.rowCount()));
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("report.xlsx")});
        QFile old(path);
        QVERIFY(old.open(QIODevice::ReadOnly));
        QCOMPARE(old.readAll(), QByteArray("an older report"));
    }

    void aFolderThatCannotBeWrittenIsRefusedAndLeavesNoFile_data()
    {
        QTest::addColumn<QString>("suffix");
        QTest::newRow("workbook") << "xlsx";
        QTest::newRow("text") << "tsv";
    }

    void aFolderThatCannotBeWrittenIsRefusedAndLeavesNoFile()
    {
        QFETCH(QString, suffix);
        QTemporaryDir dir;
        // A plain file where the folder should be.
        QFile notAFolder(dir.filePath(QStringLiteral("reports")));
        QVERIFY(notAFolder.open(QIODevice::WriteOnly));
        notAFolder.close();
        const QString path = dir.filePath(QStringLiteral("reports/out.") + suffix);
        const ReportSheet sheet = agedTable({{1, 2}}, false);
        const Outcome written = suffix == QLatin1String("xlsx") ? writeReportXlsx(sheet, path) : writeReportTsv(sheet, path);
        QVERIFY(!written.ok());
        QCOMPARE(written.refusal().id(), 6216);
        QVERIFY(written.refusal().text().contains(path));
        QCOMPARE(QDir(dir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList{QStringLiteral("reports")});
    }

    void textFileHoldsTheTextAsUtf8()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("r.tsv"));
        ReportSheet sheet;
        sheet.setTitle(QStringLiteral("Núñez & Søn"));
        QVERIFY(writeReportTsv(sheet, path).ok());
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(file.readAll()), QStringLiteral("Núñez & Søn\n"));
    }
};

QTEST_GUILESS_MAIN(TestReportFiles)
#include "test_reportfiles.moc"
