#include "shell/database.h"
#include "shell/home.h"
#include "support/moneysimulation.h"

#include <QProcess>
#include <QtTest>

// Every operation of the desk that writes rows, broken at each of its writes in
// turn, leaves the database exactly as it found it. FENLARK_FAULT_STEPS=N runs
// longer sequences.
class TestWriteFailures : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aFailureAtAnyWriteOfAnyOperationLeavesNoTrace()
    {
        const int steps = qEnvironmentVariableIntValue("FENLARK_FAULT_STEPS");
        const moneysim::WriteFailureRun run = moneysim::failEveryWrite(7, steps > 0 ? steps : 60);
        qInfo("%s", qPrintable(run.summary()));
        if (run.failure)
            QFAIL(qPrintable(*run.failure));
        // The run reached the operations that write the most: bookings, moves,
        // invoices and payments each failed at several of their writes.
        for (std::size_t kind : {0u, 1u, 2u, 3u, 6u, 7u, 8u, 9u, 11u})
            QVERIFY2(run.mostWrites[kind] > 1, qPrintable(run.summary()));
    }

    // A desk killed at any moment of its writes (a power cut, as far as the
    // program can tell) leaves a file SQLite finds sound and whose money agrees.
    void aProcessKilledWhileWritingLeavesASoundDatabase_data()
    {
        QTest::addColumn<int>("afterMs");
        QTest::addColumn<unsigned>("seed");
        QTest::newRow("at once") << 0 << 11u;
        QTest::newRow("after a moment") << 350 << 12u;
        QTest::newRow("after a while") << 1200 << 13u;
    }
    void aProcessKilledWhileWritingLeavesASoundDatabase()
    {
        QFETCH(int, afterMs);
        QFETCH(unsigned, seed);
        QTemporaryDir dir;
        const QString path = dir.filePath("killed.db");
        moneysim::prepareProperty(path);
        const int bookingsBefore = fenlark::Database::open(path)->scalar("select count(*) from booking").toInt();
        QProcess child;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("FENLARK_WRITER_DB", path);
        environment.insert("FENLARK_WRITER_SEED", QString::number(seed));
        // The child is killed, so its leak check never runs.
        environment.insert("ASAN_OPTIONS", "detect_leaks=0");
        child.setProcessEnvironment(environment);
        child.start(QCoreApplication::applicationFilePath(), {"writeUntilKilled"});
        QVERIFY(child.waitForStarted());
        QVERIFY2(child.waitForReadyRead(60000), child.readAllStandardError().constData());
        // Killed only once it has committed something, however slow the machine.
        {
            auto watcher = fenlark::Database::open(path);
            QTRY_VERIFY_WITH_TIMEOUT(watcher->scalar("select count(*) from booking").toInt() > bookingsBefore, 60000);
        }
        QTest::qWait(afterMs);
        child.kill();
        QVERIFY(child.waitForFinished());
        auto db = fenlark::Database::open(path);
        QCOMPARE(db->scalar("pragma integrity_check").toString(), QString("ok"));
        QVERIFY(db->scalar("select count(*) from booking").toInt() > bookingsBefore);
        db.reset();
        if (const auto broken = moneysim::checkProperty(path))
            QFAIL(qPrintable(*broken));
    }

    // The child of the test above; on its own it has nothing to do.
    void writeUntilKilled()
    {
        const QString path = qEnvironmentVariable("FENLARK_WRITER_DB");
        if (path.isEmpty())
            QSKIP("run by aProcessKilledWhileWritingLeavesASoundDatabase");
        fenlark::Home::setPath(QFileInfo(path).absolutePath());
        moneysim::writeUntilKilled(path, unsigned(qEnvironmentVariableIntValue("FENLARK_WRITER_SEED")));
    }
};

QTEST_GUILESS_MAIN(TestWriteFailures)
#include "test_writefailures.moc"
