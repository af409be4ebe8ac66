#pragma once

#include "reports/reportsheet.h"
#include "shell/refusal.h"

#include <QDate>
#include <QDateTime>
#include <QString>

#include <optional>

namespace fenlark {

class Database;

// The reports by number, as the Reports menu lists them.
namespace report {
constexpr int CalendarPrintout = 1;
constexpr int BookingSummary = 2;
constexpr int Extras = 3;
constexpr int Clients = 4;
constexpr int ArrivalsDepartures = 5;
constexpr int InHouse = 6;
constexpr int OutstandingAccounts = 7;
constexpr int Debtors = 8;
constexpr int Transactions = 9;
constexpr int Marketing = 10;
constexpr int Payments = 11;
constexpr int SecurityAudit = 12;
constexpr int First = CalendarPrintout;
constexpr int Last = SecurityAudit;
} // namespace report

// Which criteria a report asks for.
enum class CriteriaForm {
    Dates,               // From and To
    OneDate,             // From only (In-House, Debtors)
    ClientSearch,        // a client type, or a client field and its value
    TransactionSearch,   // the ledger's search: type, number, dates, reference, amount
};

// What a report is run for. Fields a report does not take stay as they are.
struct ReportCriteria {
    QDate from;
    QDate to;
    QChar orientation = QLatin1Char('P');   // Calendar Printout: "P" a month by rows, "L" a fortnight across
    QString clientType;                     // Client Report: "I", "C", "T", "O"; empty for every type
    QString fieldType;                      // Client Report: a client field ("N" nationality, ...) ...
    QString fieldValue;                     // ... and the value it must hold
    QString tranType;                       // Transactions: "INV", "PMT", "CRN", "JNL"; empty for all
    std::optional<qint32> tranNo;
    QString reference;                      // Transactions: the reference starts with this
    std::optional<double> amount;
    QDate today;                            // the day the Debtors' ages count from
};

// The report's name: the criteria dialog's title and the menu's entry.
QString reportName(int number);
CriteriaForm criteriaForm(int number);
// Whether the report reads To as well as From (the others hide it).
bool takesToDate(int number);
bool takesOrientation(int number);

// The file a report run at that moment is saved as: its name and the moment,
// "Booking Summary 2026-03-18 094512.xlsx", with anything a file name cannot
// hold ("Arrivals/Departures") replaced by "-".
QString reportFileName(int number, const QDateTime &when);

// The orientation the Calendar Printout was last run in ("REPORT1"), "P" by default.
QChar rememberedOrientation(Database &db);

// The dates a report starts with: most run over this month; Arrivals/Departures
// over today; In-House and Debtors on today; Transactions over last month; the
// Calendar Printout over this month in portrait, or a fortnight from today in landscape.
ReportCriteria defaultCriteria(int number, const QDate &today, QChar orientation = QLatin1Char('P'));

// The criteria's first problem: From after To, an unknown report.
Outcome checkCriteria(int number, const ReportCriteria &criteria);

// Checks the criteria, remembers the Calendar Printout's orientation, and lays
// the report out. Nothing else is written.
Result<ReportSheet> runReport(Database &db, int number, const ReportCriteria &criteria);

} // namespace fenlark
