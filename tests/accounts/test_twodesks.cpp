#include "shell/database.h"
#include "shell/home.h"
#include "support/moneysimulation.h"

#include <QProcess>
#include <QtTest>

#include <cstdio>

// Two desks on one database file, each its own process writing bookings,
// changes, extras, payments and invoices as fast as it can: neither loses nor
// doubles what the other wrote, and the money still agrees.
class TestTwoDesks : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void twoDesksWritingAtOnceLoseAndDoubleNothing()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath("shared.db");
        moneysim::prepareProperty(path);
        const int bookingsBefore = fenlark::Database::open(path)->scalar("select count(*) from booking").toInt();
        const int steps = qEnvironmentVariableIntValue("FENLARK_DESK_STEPS") > 0 ? qEnvironmentVariableIntValue("FENLARK_DESK_STEPS") : 2000;
        std::vector<std::unique_ptr<QProcess>> desks;
        for (unsigned seed : {21u, 22u}) {
            auto desk = std::make_unique<QProcess>();
            QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
            environment.insert("FENLARK_DESK_DB", path);
            environment.insert("FENLARK_DESK_SEED", QString::number(seed));
            environment.insert("FENLARK_DESK_STEPS", QString::number(steps));
            desk->setProcessEnvironment(environment);
            desk->start(QCoreApplication::applicationFilePath(), {"oneDesk"});
            QVERIFY(desk->waitForStarted());
            desks.push_back(std::move(desk));
        }
        int newBookings = 0;
        for (auto &desk : desks) {
            QVERIFY(desk->waitForFinished(280000));
            const QByteArray out = desk->readAllStandardOutput();
            QVERIFY2(desk->exitCode() == 0, (out + desk->readAllStandardError()).constData());
            const QByteArray line = out.mid(out.indexOf("new bookings ")).split('\n').front();
            QVERIFY2(line.startsWith("new bookings "), out.constData());
            newBookings += line.mid(13).toInt();
        }
        qInfo("%d new bookings from two desks", newBookings);
        QVERIFY(newBookings > 0);
        auto db = fenlark::Database::open(path);
        QCOMPARE(db->scalar("pragma integrity_check").toString(), QString("ok"));
        QCOMPARE(db->scalar("select count(*) from booking").toInt(), bookingsBefore + newBookings);
        // One change-log row per record, however the two desks' writes fell.
        QCOMPARE(db->scalar("select count(*) from (select TableName, bbtableid from dblog group by TableName, bbtableid "
                            "having count(*) > 1)").toInt(), 0);
        db.reset();
        if (const auto broken = moneysim::checkProperty(path))
            QFAIL(qPrintable(*broken));
    }

    // One desk of the test above; on its own it has nothing to do.
    void oneDesk()
    {
        const QString path = qEnvironmentVariable("FENLARK_DESK_DB");
        if (path.isEmpty())
            QSKIP("run by twoDesksWritingAtOnceLoseAndDoubleNothing");
        fenlark::Home::setPath(QFileInfo(path).absolutePath());
        const moneysim::Outcome outcome = moneysim::runOn(path, unsigned(qEnvironmentVariableIntValue("FENLARK_DESK_SEED")),
                                                          qEnvironmentVariableIntValue("FENLARK_DESK_STEPS"));
        // Waiting for the other desk is expected; giving up on it is not.
        QVERIFY2(outcome.errors.isEmpty(), qPrintable(outcome.errors.join('\n')));
        std::printf("new bookings %d\n", outcome.done.at(0));
        std::fflush(stdout);
    }
};

QTEST_GUILESS_MAIN(TestTwoDesks)
#include "test_twodesks.moc"
