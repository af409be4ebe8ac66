#include "bookings/bookingrecords.h"
#include "clients/sources.h"
#include "support/testdatabase.h"

#include <QtTest>

using namespace fenlark;

namespace {

void addBooking(Database &db, const QString &source, double agentComm = 0)
{
    Booking head;
    head.Source = source;
    head.AgentComm = agentComm;
    head.update(db);
}

} // namespace

class TestSources : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void listsEachUsedSourceOnceInOrder()
    {
        TestDatabase t;
        for (const char *source : {"Web", "Agent", "Web", "", "  ", "O'Brien", "Walk-in"})
            addBooking(t.db(), QString::fromLatin1(source));
        QCOMPARE(bookingSources(t.db()), QStringList({"  ", "Agent", "O'Brien", "Walk-in", "Web"}));
        QCOMPARE(bookingSources(t.db(), "W"), QStringList({"Walk-in", "Web"}));
        QCOMPARE(bookingSources(t.db(), "O'"), QStringList({"O'Brien"}));
        // Typed wildcards keep matching.
        QCOMPARE(bookingSources(t.db(), "_e"), QStringList({"Web"}));
        QCOMPARE(bookingSources(t.db(), "%-"), QStringList({"Walk-in"}));
        QVERIFY(bookingSources(t.db(), "Z").isEmpty());
    }

    void sourcesSortAsNamesAndMatchInAnyCase()
    {
        TestDatabase t;
        for (const char *source : {"website", "Agent", "Ñandú Tours", "Zebra Travel", "agency 10", "agency 9", "NUEVO"})
            addBooking(t.db(), QString::fromUtf8(source));
        QCOMPARE(bookingSources(t.db()), QStringList({"agency 9", "agency 10", "Agent", QString::fromUtf8("Ñandú Tours"),
                                                      "NUEVO", "website", "Zebra Travel"}));
        QCOMPARE(bookingSources(t.db(), QString::fromUtf8("ñan")), QStringList({QString::fromUtf8("Ñandú Tours")}));
        QCOMPARE(bookingSources(t.db(), "WEB"), QStringList({"website"}));
        QCOMPARE(bookingSources(t.db(), "nue"), QStringList({"NUEVO"}));
    }

    void newestCommissionOfASourceWins()
    {
        TestDatabase t;
        addBooking(t.db(), QStringLiteral("Agent"), 10);
        addBooking(t.db(), QStringLiteral("Agent"), 12.5);
        addBooking(t.db(), QStringLiteral("Agency"), 7);
        QCOMPARE(newestAgentComm(t.db(), "Agent"), 12.5);
        QCOMPARE(newestAgentComm(t.db(), "Agen"), 0.0);
        QCOMPARE(newestAgentComm(t.db(), "Nobody"), 0.0);
    }
};

QTEST_GUILESS_MAIN(TestSources)
#include "test_sources.moc"
