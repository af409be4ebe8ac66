#include "bookings/bookingrecords.h"
#include "clients/sourcerename.h"
#include "shell/changelog.h"
#include "shell/security.h"
#include "support/databasedump.h"
#include "support/testdatabase.h"

#include <QtTest>

using namespace fenlark;

namespace {

class Answer : public RenameQuestions {
public:
    explicit Answer(bool yes = true) : m_yes(yes) {}
    bool confirmReplace(const QString &oldSource, const QString &newSource) override
    {
        asked << oldSource + ">" + newSource;
        return m_yes;
    }
    QStringList asked;

private:
    bool m_yes;
};

qint32 addBooking(Database &db, const QString &type, const QString &source)
{
    Booking b;
    b.BookingType = type;
    b.Source = source;
    b.update(db);
    ChangeLog::clearLog(db, "booking", b.BBBookingID);
    return b.BBBookingID;
}

QStringList texts(const std::vector<SourceCount> &counts)
{
    QStringList out;
    for (const SourceCount &c : counts)
        out << c.text();
    return out;
}

QString snapshot(Database &db)
{
    return dumpDatabase(db.connection());
}

} // namespace

class TestSourceRename : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void listsTheSourcesOfDeskBookingsWithTheirCounts()
    {
        TestDatabase t;
        for (const char *source : {"Web", "Webb", "Web", "", "Agent"})
            addBooking(t.db(), "P", QString::fromLatin1(source));
        addBooking(t.db(), "N", "Webb");
        addBooking(t.db(), "N", "Server only");
        QCOMPARE(texts(sourceCounts(t.db())), QStringList({" ( 1 )", "Agent ( 1 )", "Web ( 2 )", "Webb ( 1 )"}));
    }

    void renamesOnlyDeskBookingsEachLoggedThenAudits()
    {
        TestDatabase t;
        const qint32 a = addBooking(t.db(), "P", "Webb");
        const qint32 b = addBooking(t.db(), "P", "Webb");
        const qint32 online = addBooking(t.db(), "N", "Webb");
        const qint32 c = addBooking(t.db(), "C", "Webb");
        const qint32 near = addBooking(t.db(), "P", "Webbs");
        UserStruct user;
        user.UserName = "Sam";
        Answer yes;
        const auto result = renameSource(t.db(), user, QString("Webb"), QString("Web"), yes);
        QVERIFY(result.ok());
        QVERIFY(result->renamed);
        QCOMPARE(result->bookings, 2);
        QCOMPARE(yes.asked, QStringList{"Webb>Web"});
        const auto source = [&](qint32 key) { return t.db().scalar("select source from booking where bbbookingid = ?", {key}).toString(); };
        QCOMPARE(source(a), QString("Web"));
        QCOMPARE(source(b), QString("Web"));
        QCOMPARE(source(online), QString("Webb"));
        QCOMPARE(source(c), QString("Webb"));
        QCOMPARE(source(near), QString("Webbs"));
        QCOMPARE(t.db().scalar("select group_concat(bbtableid) from (select bbtableid from dblog where tablename = 'booking' "
                               "and logtype = 'U' order by bbtableid)").toString(),
                 QString("%1,%2").arg(a).arg(b));
        QCOMPARE(result->changes.bookings(), (QSet<qint32>{a, b}));
        QCOMPARE(t.db().scalar("select Notes from audit").toString(),
                 QString("Old source (Webb) replaced with new source (Web) (Source renamed)"));
        QCOMPARE(t.db().scalar("select UserName from audit").toString(), QString("Sam"));
    }

    void emptySourceCanBeFilledIn()
    {
        TestDatabase t;
        const qint32 blank = addBooking(t.db(), "P", "");
        Answer yes;
        QCOMPARE(renameSource(t.db(), UserStruct::autoAdmin(), QString(""), QString("Walk-in"), yes)->bookings, 1);
        QCOMPARE(t.db().scalar("select source from booking where bbbookingid = ?", {blank}).toString(), QString("Walk-in"));
    }

    void refusalsAndNoWriteNothing_data()
    {
        QTest::addColumn<bool>("oldChosen");
        QTest::addColumn<bool>("newChosen");
        QTest::addColumn<QString>("target");
        QTest::addColumn<int>("refusal");
        QTest::newRow("nothing to replace chosen") << false << true << "Web" << 6989;
        QTest::newRow("no replacement chosen") << true << false << "" << 6991;
        QTest::newRow("replaced by itself") << true << true << "Webb" << 6995;
        QTest::newRow("answered No") << true << true << "Web" << 0;
    }

    void refusalsAndNoWriteNothing()
    {
        QFETCH(bool, oldChosen);
        QFETCH(bool, newChosen);
        QFETCH(QString, target);
        QFETCH(int, refusal);
        TestDatabase t;
        addBooking(t.db(), "P", "Webb");
        addBooking(t.db(), "P", "Web");
        const QString before = snapshot(t.db());
        Answer no(false);
        const auto result = renameSource(t.db(), UserStruct::autoAdmin(), oldChosen ? std::optional<QString>("Webb") : std::nullopt,
                                         newChosen ? std::optional<QString>(target) : std::nullopt, no);
        if (refusal) {
            QCOMPARE(result.refusal().id(), refusal);
            QVERIFY(no.asked.isEmpty());
        } else {
            QVERIFY(!result->renamed);
            QCOMPARE(no.asked.size(), 1);
        }
        QCOMPARE(snapshot(t.db()), before);
    }
};

QTEST_GUILESS_MAIN(TestSourceRename)
#include "test_sourcerename.moc"
