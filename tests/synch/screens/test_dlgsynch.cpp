#include "synch/screens/dlgsynch.h"

#include "server/httpfront.h"
#include "server/referenceserver.h"
#include "shell/changelog.h"
#include "shell/config.h"
#include "shell/strings.h"
#include "support/databasedump.h"
#include "support/recordingsink.h"
#include "support/testdatabase.h"
#include "synch/hostileserver.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

using namespace fenlark;
using namespace fenlark::server;

namespace {

constexpr qint32 Bbid = 12345;
const QString Password = QStringLiteral("s3cret");

// The desk's database with a change waiting, the reference server that a good run
// talks to, and a server that stalls.
struct Rig {
    Rig()
    {
        t.db().execute(QStringLiteral("insert into bbsetup (BBID, BBName, Password) values (?,?,?)"), {Bbid, QStringLiteral("Fen Lodge"), Password});
        t.db().execute(QStringLiteral("insert into room (BBRoomID, BBRTID, RoomName, OrderBy) values (1, 1, 'Heron', 1)"));
        const QString storePath = serverDir.filePath(QStringLiteral("server.db"));
        store = std::make_unique<ReferenceServer>(storePath, QStringLiteral("cancel"));
        store->seedFromDesk(t.db().path());
        front = std::make_unique<HttpFront>(storePath);
        cleanPort = front->listen(QHostAddress::LocalHost, 0);
        t.db().execute(QStringLiteral("insert into client (Surname) values ('Walker')"));
        client = static_cast<qint32>(t.db().lastInsertId());
        ChangeLog::logUpdate(t.db(), QStringLiteral("client"), client);
    }

    QString dump() { return dumpDatabase(t.db().connection()); }

    TestDatabase t;
    QTemporaryDir serverDir;
    std::unique_ptr<ReferenceServer> store;
    std::unique_ptr<HttpFront> front;
    quint16 cleanPort = 0;
    HostileServer stalling;
    qint32 client = 0;
};

} // namespace

class TestDlgSynch : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void startsReadyAndFollowsProgress()
    {
        TestDatabase t;
        DlgSynch dialog(t.db());
        auto *label = dialog.findChild<QLabel *>(QStringLiteral("lblProgress"));
        auto *button = dialog.findChild<QPushButton *>(QStringLiteral("cmdProgress"));
        QVERIFY(label && button);
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Synchronisation"));
        QCOMPARE(button->text(), QStringLiteral("Start Synchronisation"));
        QCOMPARE(label->text(), QStringLiteral("Are you ready to begin synchronisation?"));
        dialog.progress(QStringLiteral("Processing data..."));
        QCOMPARE(label->text(), QStringLiteral("Processing data..."));
        QVERIFY(!dialog.succeeded());
    }

    void cancelEndsTheWaitAtOnceAppliesNothingAndTheNextRunWorks_data()
    {
        QTest::addColumn<bool>("stallOnSetup");
        QTest::addColumn<bool>("byEscape");
        QTest::newRow("waiting on the exchange, Cancel") << false << false;
        QTest::newRow("waiting on the setup request, Cancel") << true << false;
        QTest::newRow("waiting on the exchange, Escape") << false << true;
    }

    void cancelEndsTheWaitAtOnceAppliesNothingAndTheNextRunWorks()
    {
        QFETCH(bool, stallOnSetup);
        QFETCH(bool, byEscape);
        Rig rig;
        RecordingSink sink;
        writeConfig(QStringLiteral("Server"), rig.stalling.address());
        // What arrives before the silence acknowledges the waiting change: applied,
        // it would clear the change log.
        const qint32 logId = rig.t.db().scalar(QStringLiteral("select max(logid) from dblog")).toInt();
        rig.stalling.stallAfter(QStringLiteral("{\"success\":true,\"data\":{\"requests\":[],\"acknowledgements\":[{\"tablename\":"
                                               "\"client\",\"tableid\":7,\"bbtableid\":%1,\"dblogid\":%2}],\"logupdates\":[")
                                    .arg(rig.client)
                                    .arg(logId)
                                    .toLatin1(),
                                stallOnSetup);
        const QString before = rig.dump();

        DlgSynch dialog(rig.t.db());
        dialog.show();
        auto *start = dialog.findChild<QPushButton *>(QStringLiteral("cmdProgress"));
        auto *cancel = dialog.findChild<QPushButton *>(QStringLiteral("cmdCancel"));
        auto *label = dialog.findChild<QLabel *>(QStringLiteral("lblProgress"));
        QVERIFY(cancel && cancel->isVisible());
        QElapsedTimer sinceCancel;
        rig.stalling.whenStalled = [&] {
            QTimer::singleShot(200, &dialog, [&] {
                QVERIFY(dialog.isRunning());
                sinceCancel.start();
                if (byEscape)
                    QTest::keyClick(&dialog, Qt::Key_Escape);
                else
                    QTest::mouseClick(cancel, Qt::LeftButton);
            });
        };
        QElapsedTimer run;
        run.start();
        QTest::mouseClick(start, Qt::LeftButton);   // returns when the run has ended

        QVERIFY(sinceCancel.isValid());
        QVERIFY2(sinceCancel.elapsed() < 2000, qPrintable(QString::number(sinceCancel.elapsed())));
        QVERIFY(run.elapsed() < 10000);
        QVERIFY(!dialog.succeeded());
        QVERIFY(!dialog.isRunning());
        QVERIFY(dialog.isVisible());
        QCOMPARE(label->text(), getString(5194, QString()));
        QVERIFY(sink.shown.isEmpty());
        QVERIFY(cancel->isHidden());
        QVERIFY(start->isEnabled());
        QCOMPARE(int(rig.stalling.bodies.size()), stallOnSetup ? 0 : 1);
        // Nothing applied, the change log whole, no lock left.
        QCOMPARE(rig.dump(), before);
        QCOMPARE(ChangeLog::count(rig.t.db()), 1);

        writeConfig(QStringLiteral("Server"), QStringLiteral("127.0.0.1:%1").arg(rig.cleanPort));
        DlgSynch next(rig.t.db());
        QTest::mouseClick(next.findChild<QPushButton *>(QStringLiteral("cmdProgress")), Qt::LeftButton);
        QVERIFY2(next.succeeded(), qPrintable(next.findChild<QLabel *>(QStringLiteral("lblProgress"))->text()));
        QCOMPARE(ChangeLog::count(rig.t.db()), 0);
    }

    void cancelBeforeTheRunClosesTheDialog()
    {
        TestDatabase t;
        DlgSynch dialog(t.db());
        dialog.show();
        QTest::mouseClick(dialog.findChild<QPushButton *>(QStringLiteral("cmdCancel")), Qt::LeftButton);
        QCOMPARE(dialog.result(), int(QDialog::Rejected));
        QVERIFY(!dialog.isVisible());
        QCOMPARE(t.db().scalar(QStringLiteral("select count(*) from synchlock")).toInt(), 0);
    }

    void newBookingNoticeShowsTheText()
    {
        DlgNewBooking notice(QStringLiteral("Client Name: Ngata\r\n"));
        QCOMPARE(notice.windowTitle(), QStringLiteral("New bookings"));
        QVERIFY(notice.findChild<QPlainTextEdit *>()->toPlainText().contains(QLatin1String("Ngata")));
        QVERIFY(notice.findChild<QPushButton *>(QStringLiteral("cmdExit")));
    }
};

QTEST_MAIN(TestDlgSynch)
#include "test_dlgsynch.moc"
