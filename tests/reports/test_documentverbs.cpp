// fenlarkctl document and letter, run as a script runs them: JSON with the files
// written on stdout, a refusal on stderr with a non-zero exit and nothing written.
#include "accounts/accountrecords.h"
#include "desk/propertygenerator.h"
#include "support/testdatabase.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QtTest>

using namespace fenlark;

namespace {

struct Run {
    int exitCode = -1;
    QJsonObject json;
    QString errors;
};

} // namespace

class TestDocumentVerbs : public QObject {
    Q_OBJECT

    QString m_ctl;
    std::unique_ptr<TestDatabase> m_t;
    qint32 m_account = 0;
    qint32 m_booking = 0;

    Run ctl(QStringList arguments)
    {
        arguments << "--home" << m_t->home() << "--db" << m_t->db().path();
        QProcess process;
        process.start(m_ctl, arguments);
        process.waitForFinished(120000);
        Run run;
        run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
        run.json = QJsonDocument::fromJson(process.readAllStandardOutput()).object();
        run.errors = QString::fromUtf8(process.readAllStandardError()).trimmed();
        return run;
    }

    QStringList filesIn(const QString &folder) { return QDir(m_t->file(folder)).entryList(QDir::Files); }

private Q_SLOTS:
    void initTestCase()
    {
        m_ctl = QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../fenlarkctl"));
        if (!QFileInfo::exists(m_ctl))
            QSKIP("fenlarkctl is not built beside the tests");
    }

    void init()
    {
        m_t = std::make_unique<TestDatabase>();
        PropertyGenerator::Options options = PropertyGenerator::demo();
        options.seed = 7;
        PropertyGenerator(options).generate(m_t->db());
        m_booking = m_t->db().scalar("select bbbookingid from booking where status <> 'U' and "
                                     "(select count(*) from guest where guest.bbbookingid = booking.bbbookingid) > 1 limit 1").toInt();
        m_account = m_t->db().scalar("select bbaccountid from booking where bbbookingid = ?", {m_booking}).toInt();
        QVERIFY(m_booking > 0);
    }

    void proFormaIsWrittenIntoTheInvoiceFolderOrTheFolderGiven()
    {
        Run run = ctl({"document", "--account", QString::number(m_account), "--type", "P"});
        QCOMPARE(run.exitCode, 1);
        QVERIFY(run.errors.contains("has no pro forma number yet"));

        m_t->db().execute("update account set proformano = 12 where bbaccountid = ?", {m_account});
        run = ctl({"document", "--account", QString::number(m_account), "--type", "P"});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.json.value("files").toArray().first().toString(), m_t->file("invoices/Pro000012.xlsx"));
        QCOMPARE(run.json.value("number").toInt(), 12);
        QVERIFY(run.json.value("total").isDouble());

        QDir(m_t->home()).mkpath("out");
        run = ctl({"document", "--account", QString::number(m_account), "--type", "P", "--out", m_t->file("out")});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(filesIn("out"), QStringList{"Pro000012.xlsx"});
    }

    void badOptionsAreRefusedWritingNothing_data()
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
    void badOptionsAreRefusedWritingNothing()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, message);
        const Run run = ctl(arguments);
        QVERIFY(run.exitCode != 0);
        QVERIFY2(run.errors.contains(message), qPrintable(run.errors));
        QVERIFY(filesIn("invoices").isEmpty());
        QVERIFY(filesIn("letters").isEmpty());
    }

    void lettersPrintTheBookingsRooms()
    {
        Run run = ctl({"letter", "--booking", QString::number(m_booking), "--kind", "registration", "--other-rooms"});
        QCOMPARE(run.exitCode, 0);
        const int rooms = m_t->db().scalar("select count(*) from guest where bbbookingid = ?", {m_booking}).toInt();
        QCOMPARE(run.json.value("files").toArray().size(), rooms);
        QCOMPARE(filesIn("letters").size(), rooms);

        run = ctl({"letter", "--booking", QString::number(m_booking), "--kind", "confirmation"});
        QCOMPARE(run.exitCode, 0);
        const QString email = m_t->db().scalar("select email from client join booking on madeby = bbclientid where bbbookingid = ?",
                                               {m_booking}).toString();
        QCOMPARE(run.json.value("email").toString(), email);

        run = ctl({"letter", "--booking", QString::number(m_booking), "--kind", "summary"});
        QCOMPARE(run.exitCode, 0);
        QVERIFY(QFile::exists(m_t->file("VMWordPad.txt")));
    }

    void lettersWithoutLibreOfficeAreWrittenAndTheMissingPdfIsSaid()
    {
        qputenv("FENLARK_SOFFICE", "/nonexistent/soffice");
        const Run run = ctl({"letter", "--booking", QString::number(m_booking), "--kind", "confirmation", "--pdf"});
        qunsetenv("FENLARK_SOFFICE");
        QCOMPARE(run.exitCode, 3);
        QVERIFY(run.errors.contains("needs LibreOffice"));
        QCOMPARE(run.json.value("files").toArray().size(), 1);
        QCOMPARE(filesIn("letters").size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestDocumentVerbs)
#include "test_documentverbs.moc"
