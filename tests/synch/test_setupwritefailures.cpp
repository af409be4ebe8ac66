#include "shell/database.h"
#include "support/recordingsink.h"
#include "support/testdatabase.h"
#include "support/writefaults.h"
#include "synch/setupdownload.h"
#include "synch/transport.h"

#include <QtTest>

using namespace fenlark;

namespace {

class CannedTransport : public ServerTransport {
public:
    QString reply;
    PostResult post(const QString &, const QByteArray &) override
    {
        PostResult r;
        r.ok = true;
        r.reply = reply;
        return r;
    }
};

} // namespace

// A setup download replaces its tables whole or not at all, whichever of its
// writes fails.
class TestSetupWriteFailures : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aSetupDownloadBrokenAtAnyWriteLeavesTheOldSetup()
    {
        TestDatabase t;
        RecordingSink sink;
        t.db().execute(QStringLiteral("insert into bbsetup (BBID, BBName, Password) values (12345, 'Fen Lodge', 'pw')"));
        t.db().execute(QStringLiteral("insert into room (BBRoomID, BBRTID, RoomName, OrderBy) values (9, 1, 'Old', 1), (8, 1, 'Older', 2)"));
        t.db().execute(QStringLiteral("insert into roomtype (BBRTID, RTName) values (1, 'Double')"));
        CannedTransport transport;
        transport.reply = QStringLiteral(R"({"success":true,"data":{
            "room":[{"bbroomid":1,"bbrtid":2,"roomname":"Heron","orderby":1},{"bbroomid":2,"bbrtid":2,"roomname":"Otter","orderby":2},
                    {"bbroomid":3,"bbrtid":3,"roomname":"Badger","orderby":3}],
            "roomtype":[{"bbrtid":2,"rtname":"Twin"},{"bbrtid":3,"rtname":"Family"}],
            "stock":[{"bbstockid":1,"stockname":"Wine","price":12.5}],
            "bbsetup":[{"bbid":12345,"bbname":"Fen Lodge","synchcounter":8}]}})");
        bool ok = false;
        const EveryWrite result = failEachWrite(t.db(), [&] {
            SetupDownload setup(t.db(), transport);
            setup.setShowMessages(false);
            ServerLogin login;
            login.server = QStringLiteral("127.0.0.1:1");
            login.bbid = 12345;
            login.password = QStringLiteral("pw");
            setup.setLogin(login);
            ok = setup.initialise();
        });
        qInfo("setup download: %d writes, each failed once", result.writes);
        QVERIFY2(result.failure.isEmpty(), qPrintable(result.failure));
        QVERIFY(ok);
        QVERIFY(result.writes >= 8);
        QCOMPARE(t.db().scalar(QStringLiteral("select group_concat(RoomName) from (select RoomName from room order by OrderBy)")).toString(),
                 QStringLiteral("Heron,Otter,Badger"));
    }
};

QTEST_GUILESS_MAIN(TestSetupWriteFailures)
#include "test_setupwritefailures.moc"
