// The rules around the reports: the dates each starts with, the criteria it
// refuses, the remembered orientation, the ages of debts, the related bookings.
#include "reports/debtorageing.h"
#include "reports/reportcatalogue.h"
#include "reports/reportlookups.h"
#include "reportfixture.h"
#include "shell/preferences.h"

#include <QtTest>

using namespace fenlark;

class TestReportRules : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eachReportStartsWithItsOwnDates_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<QDate>("today");
        QTest::addColumn<QString>("orientation");
        QTest::addColumn<QDate>("from");
        QTest::addColumn<QDate>("to");
        const QDate today(2026, 3, 18);
        QTest::newRow("calendar in portrait: the month") << 1 << today << "P" << QDate(2026, 3, 1) << QDate(2026, 3, 31);
        QTest::newRow("calendar in portrait: February of a leap year")
            << 1 << QDate(2028, 2, 10) << "P" << QDate(2028, 2, 1) << QDate(2028, 2, 29);
        QTest::newRow("calendar in landscape: a fortnight") << 1 << today << "L" << today << QDate(2026, 3, 31);
        QTest::newRow("booking summary: the month") << 2 << today << "P" << QDate(2026, 3, 1) << QDate(2026, 3, 31);
        QTest::newRow("security audit in December") << 12 << QDate(2026, 12, 31) << "P" << QDate(2026, 12, 1)
                                                    << QDate(2026, 12, 31);
        QTest::newRow("client report: no dates") << 4 << today << "P" << QDate() << QDate();
        QTest::newRow("arrivals and departures: today") << 5 << today << "P" << today << today;
        QTest::newRow("in-house: today alone") << 6 << today << "P" << today << QDate();
        QTest::newRow("debtors: today alone") << 8 << today << "P" << today << QDate();
        QTest::newRow("transactions: last month") << 9 << today << "P" << QDate(2026, 2, 1) << QDate(2026, 2, 28);
        QTest::newRow("transactions in January: December") << 9 << QDate(2026, 1, 5) << "P" << QDate(2025, 12, 1)
                                                           << QDate(2025, 12, 31);
    }

    void eachReportStartsWithItsOwnDates()
    {
        QFETCH(int, number);
        QFETCH(QDate, today);
        QFETCH(QString, orientation);
        QFETCH(QDate, from);
        QFETCH(QDate, to);
        const ReportCriteria criteria = defaultCriteria(number, today, orientation.at(0));
        QCOMPARE(criteria.from, from);
        QCOMPARE(criteria.to, to);
        QCOMPARE(criteria.today, today);
    }

    void criteriaAreCheckedBeforeAnythingIsRead_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<QDate>("from");
        QTest::addColumn<QDate>("to");
        QTest::addColumn<int>("refusal");   // 0: accepted
        const QDate day(2026, 3, 10);
        QTest::newRow("From equal to To") << 2 << day << day << 0;
        QTest::newRow("From after To") << 2 << day << day.addDays(-1) << 2145;
        QTest::newRow("transactions: start after end") << 9 << day << day.addDays(-1) << 6204;
        QTest::newRow("in-house reads no To") << 6 << day << day.addDays(-1) << 0;
        QTest::newRow("debtors read no To") << 8 << day << QDate() << 0;
        QTest::newRow("client report reads no dates") << 4 << QDate() << QDate() << 0;
        QTest::newRow("no From") << 3 << QDate() << day << 6219;
        QTest::newRow("no report 0") << 0 << day << day << 6218;
        QTest::newRow("no report 13") << 13 << day << day << 6218;
    }

    void criteriaAreCheckedBeforeAnythingIsRead()
    {
        QFETCH(int, number);
        QFETCH(QDate, from);
        QFETCH(QDate, to);
        QFETCH(int, refusal);
        ReportCriteria criteria;
        criteria.from = from;
        criteria.to = to;
        const Outcome outcome = checkCriteria(number, criteria);
        QCOMPARE(outcome.ok() ? 0 : outcome.refusal().id(), refusal);
    }

    void unknownCodesInTheCriteriaAreRefused_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("orientation");
        QTest::addColumn<QString>("clientType");
        QTest::addColumn<QString>("fieldType");
        QTest::addColumn<QString>("tranType");
        QTest::addColumn<int>("refusal");
        QTest::newRow("orientation") << 1 << "X" << "" << "" << "" << 6226;
        QTest::newRow("client type") << 4 << "P" << "Z" << "" << "" << 6220;
        QTest::newRow("client field") << 4 << "P" << "" << "Q" << "" << 6221;
        QTest::newRow("transaction type") << 9 << "P" << "" << "" << "ABC" << 6222;
        QTest::newRow("tour operators by nationality") << 4 << "P" << "O" << "N" << "" << 0;
        QTest::newRow("journals") << 9 << "P" << "" << "" << "JNL" << 0;
    }

    void unknownCodesInTheCriteriaAreRefused()
    {
        QFETCH(int, number);
        QFETCH(QString, orientation);
        QFETCH(QString, clientType);
        QFETCH(QString, fieldType);
        QFETCH(QString, tranType);
        QFETCH(int, refusal);
        ReportCriteria criteria = defaultCriteria(number, QDate(2026, 3, 18), orientation.at(0));
        criteria.clientType = clientType;
        criteria.fieldType = fieldType;
        criteria.tranType = tranType;
        const Outcome outcome = checkCriteria(number, criteria);
        QCOMPARE(outcome.ok() ? 0 : outcome.refusal().id(), refusal);
    }

    void calendarPrintoutRemembersItsOrientationOnlyWhenRun()
    {
        TestDatabase t;
        QCOMPARE(rememberedOrientation(t.db()), QLatin1Char('P'));
        ReportCriteria refused = defaultCriteria(report::CalendarPrintout, QDate(2026, 3, 18), QLatin1Char('L'));
        refused.to = refused.from.addDays(-1);
        QVERIFY(!runReport(t.db(), report::CalendarPrintout, refused).ok());
        QCOMPARE(getPreference(t.db(), QStringLiteral("REPORT1")), QString());

        const ReportCriteria landscape = defaultCriteria(report::CalendarPrintout, QDate(2026, 3, 18), QLatin1Char('L'));
        QVERIFY(runReport(t.db(), report::CalendarPrintout, landscape).ok());
        QCOMPARE(getPreference(t.db(), QStringLiteral("REPORT1")), QStringLiteral("L"));
        QCOMPARE(rememberedOrientation(t.db()), QLatin1Char('L'));

        // Another report leaves it alone.
        QVERIFY(runReport(t.db(), report::BookingSummary, defaultCriteria(report::BookingSummary, QDate(2026, 3, 18))).ok());
        QCOMPARE(rememberedOrientation(t.db()), QLatin1Char('L'));
    }

    void ageLimitsStepBackByCalendarMonths_data()
    {
        QTest::addColumn<QDate>("today");
        QTest::addColumn<QDate>("days30");
        QTest::addColumn<QDate>("days60");
        QTest::addColumn<QDate>("days90");
        QTest::newRow("the 31st") << QDate(2026, 5, 31) << QDate(2026, 4, 30) << QDate(2026, 3, 30) << QDate(2026, 2, 28);
        QTest::newRow("31 March reaches into February")
            << QDate(2026, 3, 31) << QDate(2026, 2, 28) << QDate(2026, 1, 28) << QDate(2025, 12, 28);
        QTest::newRow("leap-year 29 February") << QDate(2028, 2, 29) << QDate(2028, 1, 29) << QDate(2027, 12, 29)
                                               << QDate(2027, 11, 29);
        QTest::newRow("31 March of a leap year") << QDate(2028, 3, 31) << QDate(2028, 2, 29) << QDate(2028, 1, 29)
                                                 << QDate(2027, 12, 29);
    }

    void ageLimitsStepBackByCalendarMonths()
    {
        QFETCH(QDate, today);
        QFETCH(QDate, days30);
        QFETCH(QDate, days60);
        QFETCH(QDate, days90);
        const AgeLimits limits = AgeLimits::from(today);
        QCOMPARE(limits.current, today);
        QCOMPARE(limits.days30, days30);
        QCOMPARE(limits.days60, days60);
        QCOMPARE(limits.days90, days90);
    }

    void aRowTakesTheOldestLimitItDoesNotPass_data()
    {
        QTest::addColumn<QDate>("tranDate");
        QTest::addColumn<int>("age");
        // Today 29 February 2028: limits 29 Jan, 29 Dec, 29 Nov.
        QTest::newRow("today") << QDate(2028, 2, 29) << int(DebtAge::Current);
        QTest::newRow("tomorrow") << QDate(2028, 3, 1) << int(DebtAge::Future);
        QTest::newRow("on the 30-day limit") << QDate(2028, 1, 29) << int(DebtAge::Days30);
        QTest::newRow("a day after it") << QDate(2028, 1, 30) << int(DebtAge::Current);
        QTest::newRow("on the 60-day limit") << QDate(2027, 12, 29) << int(DebtAge::Days60);
        QTest::newRow("on the 90-day limit") << QDate(2027, 11, 29) << int(DebtAge::Days90);
        QTest::newRow("a year ago") << QDate(2027, 2, 28) << int(DebtAge::Days90);
    }

    void aRowTakesTheOldestLimitItDoesNotPass()
    {
        QFETCH(QDate, tranDate);
        QFETCH(int, age);
        QCOMPARE(int(AgeLimits::from(QDate(2028, 2, 29)).ageOf(tranDate)), age);
    }

    void relatedBookingsJoinTheAccountsBookingsAndRoomsOnce()
    {
        TestDatabase t;
        reportfixture::seed(t.db());
        QCOMPARE(relatedBookings(t.db(), 1), (QList<qint32>{1, 5}));
        QCOMPARE(relatedBookings(t.db(), 3), QList<qint32>{2});   // a room billed on its own account
        QCOMPARE(relatedBookings(t.db(), 0), QList<qint32>{});    // no account: not every room billed with its booking
        // A booking on the account whose room is also billed there counts once.
        t.db().execute(QStringLiteral("update guest set BBAccountID = 1 where BBGuestID = 6"));
        QCOMPARE(joinKeys(relatedBookings(t.db(), 1)), QStringLiteral("1, 5"));
    }
};

QTEST_GUILESS_MAIN(TestReportRules)
#include "test_reportrules.moc"
