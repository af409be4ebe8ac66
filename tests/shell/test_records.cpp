#include "accounts/accountrecords.h"
#include "bookings/bookingrecords.h"
#include "clients/clientrecords.h"
#include "shell/changelog.h"
#include "support/testdatabase.h"

#include <QtTest>

using namespace fenlark;

class TestRecords : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void newRecordSavedTwiceInsertsThenChangesWithOneLogRow()
    {
        TestDatabase t;
        Extra extra;
        extra.BBGuestID = 4;
        extra.ExtraDate = QDate(2025, 3, 9);
        extra.Qty = 2;
        extra.Price = 12.5;
        extra.update(t.db());
        QVERIFY(extra.BBExtraID > 0);
        const qint32 first = extra.BBExtraID;
        extra.Qty = 3;
        extra.update(t.db());
        QCOMPARE(extra.BBExtraID, first);
        QCOMPARE(t.db().scalar("select count(*) from extra").toInt(), 1);
        const auto log = ChangeLog::entries(t.db());
        QCOMPARE(log.size(), std::size_t(1));
        QCOMPARE(log[0].logtype, QString("U"));
        QCOMPARE(log[0].TableName, QString("extra"));
        QCOMPARE(log[0].bbtableId, first);
        Extra back;
        QVERIFY(back.fetch(t.db(), first));
        QCOMPARE(back.Qty, 3.0);
        QCOMPARE(back.ExtraDate, QDate(2025, 3, 9));
    }

    void updateWithUnknownKeyInsertsUnderThatKey()
    {
        TestDatabase t;
        Booking b;
        b.BBBookingID = 777;
        b.BookingID = 31;
        b.Status = "C";
        b.update(t.db());
        QCOMPARE(b.BBBookingID, 777);
        Booking back;
        QVERIFY(back.fetch(t.db(), 777));
        QCOMPARE(back.BookingID, 31);
    }

    void deleteReplacesEarlierUpdateInTheLog()
    {
        TestDatabase t;
        Client c;
        c.Surname = "Smith";
        c.update(t.db());
        c.Surname = "Smyth";
        c.update(t.db());
        Client::remove(t.db(), c.BBClientID);
        const auto log = ChangeLog::entries(t.db());
        QCOMPARE(log.size(), std::size_t(1));
        QCOMPARE(log[0].logtype, QString("D"));
    }

    void markAllChangedKeepsPendingDeletions()
    {
        TestDatabase t;
        Client a, b;
        a.Surname = "A";
        a.update(t.db());
        b.Surname = "B";
        b.update(t.db());
        Guest g;
        g.BBRoomID = 1;
        g.update(t.db());
        ChangeLog::markAllChanged(t.db());
        QCOMPARE(ChangeLog::count(t.db()), 3);
        QCOMPARE(t.db().scalar("select count(*) from dblog where logtype = 'I'").toInt(), 3);

        Client::remove(t.db(), b.BBClientID);
        ChangeLog::markAllChanged(t.db());
        QCOMPARE(t.db().scalar("select logtype from dblog where TableName = 'client' and bbtableId = ?", {b.BBClientID}).toString(),
                 QString("D"));
        QCOMPARE(ChangeLog::count(t.db()), 3);
        // clients come before guests in the order of sending
        const auto log = ChangeLog::entries(t.db());
        QCOMPARE(log.back().TableName, QString("guest"));
    }

    void failedStatementRollsBackTheWholeUnit()
    {
        TestDatabase t;
        try {
            Transaction tx(t.db());
            Client c;
            c.Surname = "Kept?";
            c.update(t.db());
            t.db().execute("insert into nosuchtable values (1)");
            tx.commit();
            QFAIL("the bad statement must throw");
        } catch (const DatabaseError &) {
        }
        QCOMPARE(t.db().scalar("select count(*) from client").toInt(), 0);
        QCOMPARE(ChangeLog::count(t.db()), 0);
    }

    void deletedKeyIsNeverHandedOutAgain()
    {
        TestDatabase t;
        Account a;
        a.update(t.db());
        const qint32 first = a.BBAccountID;
        Account::remove(t.db(), first);
        Account b;
        b.update(t.db());
        QVERIFY(b.BBAccountID > first);
    }
};

QTEST_GUILESS_MAIN(TestRecords)
#include "test_records.moc"
