// fenlarkctl report, document and letter, run as a script runs them: a separate
// process on a database file, JSON on stdout, a refusal on stderr with a
// non-zero exit and nothing written.
#include "reportfixture.h"
#include "shell/preferences.h"
#include "support/ctlrun.h"

#include <QJsonArray>
#include <QtTest>

using namespace fenlark;

class TestReportVerb : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TestDatabase> m_t;

    CtlRun ctl(const QStringList &arguments) { return runCtl(m_t->home(), m_t->db().path(), arguments); }

    QString out(const QString &name) const { return m_t->file(name); }
    QStringList filesIn(const QString &folder) { return QDir(m_t->file(folder)).entryList(QDir::Files); }

private Q_SLOTS:
    void initTestCase() { FENLARK_REQUIRE_CTL(); }

    void init()
    {
        m_t = std::make_unique<TestDatabase>();
        reportfixture::seed(m_t->db());
    }

    void reportGoesToTheFileAndSaysWhatItWrote()
    {
        const CtlRun run = ctl({QStringLiteral("report"), QStringLiteral("11"), QStringLiteral("--from"),
                             QStringLiteral("2026-03-01"), QStringLiteral("--to"), QStringLiteral("2026-03-31"),
                             QStringLiteral("--out"), out(QStringLiteral("payments.tsv"))});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.json.value("report").toInt(), 11);
        QCOMPARE(run.json.value("name").toString(), QStringLiteral("Payments Report"));
        QCOMPARE(run.json.value("rows").toInt(), 4);
        QCOMPARE(run.json.value("file").toString(), out(QStringLiteral("payments.tsv")));
        QFile file(out(QStringLiteral("payments.tsv")));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
        QCOMPARE(lines.first(), QStringLiteral("Payments Report between 01/03/2026 and 31/03/2026"));
        QCOMPARE(lines.at(lines.size() - 2), QStringLiteral("\t\t\t2200.00"));

        const CtlRun workbook = ctl({QStringLiteral("report"), QStringLiteral("11"), QStringLiteral("--from"),
                                  QStringLiteral("2026-03-01"), QStringLiteral("--to"), QStringLiteral("2026-03-31"),
                                  QStringLiteral("--out"), out(QStringLiteral("payments.XLSX"))});
        QCOMPARE(workbook.exitCode, 0);
        QFile xlsx(out(QStringLiteral("payments.XLSX")));
        QVERIFY(xlsx.open(QIODevice::ReadOnly));
        QCOMPARE(xlsx.read(2), QByteArray("PK"));
    }

    void calendarPrintoutTakesAndRemembersItsOrientation()
    {
        const CtlRun run = ctl({QStringLiteral("report"), QStringLiteral("1"), QStringLiteral("--orientation"),
                             QStringLiteral("l"), QStringLiteral("--from"), QStringLiteral("2026-03-09"),
                             QStringLiteral("--out"), out(QStringLiteral("calendar.tsv"))});
        QCOMPARE(run.exitCode, 0);
        // A fortnight from the given day, the landscape default for To.
        QCOMPARE(run.json.value("title").toString(), QStringLiteral("Calendar Printout for  09/03/2026 to 22/03/2026"));
        QCOMPARE(run.json.value("rows").toInt(), 3);   // a row per room
        QCOMPARE(getPreference(m_t->db(), QStringLiteral("REPORT1")), QStringLiteral("L"));
    }

    void refusalsSayWhyAndWriteNothing_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("message");
        QTest::newRow("no such report") << QStringList{QStringLiteral("13")} << "usage: report N";
        QTest::newRow("not a number") << QStringList{QStringLiteral("two")} << "usage: report N";
        QTest::newRow("dates for the client report")
            << QStringList{QStringLiteral("4"), QStringLiteral("--from"), QStringLiteral("2026-03-01")}
            << "report 4 (Client Report) does not take --from";
        QTest::newRow("a To for In-House")
            << QStringList{QStringLiteral("6"), QStringLiteral("--to"), QStringLiteral("2026-03-01")}
            << "does not take --to";
        QTest::newRow("an orientation for the summary")
            << QStringList{QStringLiteral("2"), QStringLiteral("--orientation"), QStringLiteral("L")}
            << "does not take --orientation";
        QTest::newRow("a client type for the audit")
            << QStringList{QStringLiteral("12"), QStringLiteral("--client-type"), QStringLiteral("I")}
            << "does not take --client-type";
        QTest::newRow("From after To")
            << QStringList{QStringLiteral("2"), QStringLiteral("--from"), QStringLiteral("2026-03-02"),
                           QStringLiteral("--to"), QStringLiteral("2026-03-01")}
            << "From date cannot be later than To date.";
        QTest::newRow("a date that is none")
            << QStringList{QStringLiteral("2"), QStringLiteral("--from"), QStringLiteral("2026-02-30")}
            << "--from must be a date YYYY-MM-DD";
        QTest::newRow("an unknown client type")
            << QStringList{QStringLiteral("4"), QStringLiteral("--client-type"), QStringLiteral("X")}
            << "X is not a client type.";
        QTest::newRow("a field without a value")
            << QStringList{QStringLiteral("4"), QStringLiteral("--field-type"), QStringLiteral("N")}
            << "--field-type and --field-value go together";
        QTest::newRow("an amount that is none")
            << QStringList{QStringLiteral("9"), QStringLiteral("--amount"), QStringLiteral("12,5x")}
            << "--amount must be a number";
        QTest::newRow("an orientation that is none")
            << QStringList{QStringLiteral("1"), QStringLiteral("--orientation"), QStringLiteral("sideways")}
            << "The orientation is P (portrait) or L (landscape).";
    }

    void refusalsSayWhyAndWriteNothing()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, message);
        const CtlRun run = ctl(QStringList{QStringLiteral("report")} + arguments +
                            QStringList{QStringLiteral("--out"), out(QStringLiteral("refused.tsv"))});
        QVERIFY(run.exitCode != 0);
        QVERIFY2(run.errors.contains(message), qPrintable(run.errors));
        QVERIFY(run.json.isEmpty());
        QVERIFY(!QFileInfo::exists(out(QStringLiteral("refused.tsv"))));
        QCOMPARE(getPreference(m_t->db(), QStringLiteral("REPORT1")), QString());
    }

    void outputMustBeAWorkbookOrText()
    {
        for (const QString &name : {QStringLiteral("report.csv"), QString()}) {
            QStringList arguments{QStringLiteral("report"), QStringLiteral("2")};
            if (!name.isEmpty())
                arguments << QStringLiteral("--out") << out(name);
            const CtlRun run = ctl(arguments);
            QVERIFY(run.exitCode != 0);
            QVERIFY2(run.errors.contains(QStringLiteral("--out must name a .xlsx or .tsv file")), qPrintable(run.errors));
        }
    }

    void aFileThatCannotBeWrittenIsRefused()
    {
        const CtlRun run = ctl({QStringLiteral("report"), QStringLiteral("2"), QStringLiteral("--out"),
                             out(QStringLiteral("test.db/summary.xlsx"))});
        QVERIFY(run.exitCode != 0);
        QVERIFY2(run.errors.contains(QStringLiteral("The report could not be written to")), qPrintable(run.errors));
    }
    void proFormaIsWrittenIntoTheInvoiceFolderOrTheFolderGiven()
    {
        CtlRun run = ctl({"document", "--account", "3", "--type", "P"});
        QCOMPARE(run.exitCode, 1);
        QVERIFY(run.errors.contains("has no pro forma number yet"));

        m_t->db().execute("update account set proformano = 12 where bbaccountid = ?", {3});
        run = ctl({"document", "--account", "3", "--type", "P"});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.json.value("files").toArray().first().toString(), m_t->file("invoices/Pro000012.xlsx"));
        QCOMPARE(run.json.value("number").toInt(), 12);
        QVERIFY(run.json.value("total").isDouble());

        QDir(m_t->home()).mkpath("out");
        run = ctl({"document", "--account", "3", "--type", "P", "--out", m_t->file("out")});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(filesIn("out"), QStringList{"Pro000012.xlsx"});
    }

    void documentOptionsAreRefusedWritingNothing_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("message");
        QTest::newRow("no account") << QStringList{"document", "--type", "I"} << "--account";
        QTest::newRow("unknown type") << QStringList{"document", "--account", "1", "--type", "X"} << "--type";
        QTest::newRow("number on an invoice") << QStringList{"document", "--account", "1", "--type", "I", "--number", "3"} << "--number";
        QTest::newRow("no invoice") << QStringList{"document", "--account", "1", "--type", "I"} << "has no invoice.";
        QTest::newRow("no credit note") << QStringList{"document", "--account", "1", "--type", "C"} << "has no credit note.";
        QTest::newRow("missing account") << QStringList{"document", "--account", "999999", "--type", "P"} << "Account 999999 could not be found.";
        QTest::newRow("unknown kind") << QStringList{"letter", "--booking", "1", "--kind", "postcard"} << "--kind";
        QTest::newRow("room on a confirmation") << QStringList{"letter", "--booking", "1", "--kind", "confirmation", "--room", "2"} << "--room";
        QTest::newRow("pdf of a summary") << QStringList{"letter", "--booking", "1", "--kind", "summary", "--pdf"} << "--pdf";
        QTest::newRow("missing booking") << QStringList{"letter", "--booking", "999999", "--kind", "confirmation"} << "Could not fetch booking data (999999)";
    }
    void documentOptionsAreRefusedWritingNothing()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, message);
        const CtlRun run = ctl(arguments);
        QVERIFY(run.exitCode != 0);
        QVERIFY2(run.errors.contains(message), qPrintable(run.errors));
        QVERIFY(filesIn("invoices").isEmpty());
        QVERIFY(filesIn("letters").isEmpty());
    }

    void lettersPrintTheBookingsRooms()
    {
        CtlRun run = ctl({"letter", "--booking", "2", "--kind", "registration", "--other-rooms"});
        QCOMPARE(run.exitCode, 0);
        const int rooms = m_t->db().scalar("select count(*) from guest where bbbookingid = ?", {2}).toInt();
        QCOMPARE(run.json.value("files").toArray().size(), rooms);
        QCOMPARE(filesIn("letters").size(), rooms);

        run = ctl({"letter", "--booking", "2", "--kind", "confirmation"});
        QCOMPARE(run.exitCode, 0);
        const QString email = m_t->db().scalar("select email from client join booking on madeby = bbclientid where bbbookingid = ?",
                                               {2}).toString();
        QCOMPARE(run.json.value("email").toString(), email);

        run = ctl({"letter", "--booking", "2", "--kind", "summary"});
        QCOMPARE(run.exitCode, 0);
        QVERIFY(QFile::exists(m_t->file("VMWordPad.txt")));
    }

    void lettersWithoutLibreOfficeAreWrittenAndTheMissingPdfIsSaid()
    {
        qputenv("FENLARK_SOFFICE", "/nonexistent/soffice");
        const CtlRun run = ctl({"letter", "--booking", "2", "--kind", "confirmation", "--pdf"});
        qunsetenv("FENLARK_SOFFICE");
        QCOMPARE(run.exitCode, 3);
        QVERIFY(run.errors.contains("needs LibreOffice"));
        QCOMPARE(run.json.value("files").toArray().size(), 1);
        QCOMPARE(filesIn("letters").size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestReportVerb)
#include "test_reportverb.moc"
