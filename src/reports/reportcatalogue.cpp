#include "reports/reportcatalogue.h"

#include "clients/clientnames.h"
#include "reports/reportbuilders.h"
#include "shell/preferences.h"
#include "shell/strings.h"

namespace fenlark {

namespace {

const QString OrientationPreference = QStringLiteral("REPORT1");

struct ReportEntry {
    int nameId;
    const char *name;
    CriteriaForm form;
    bool toDate;
    ReportSheet (*build)(Database &, const ReportCriteria &);
};

const ReportEntry Reports[] = {
    {1344, "Calendar Printout", CriteriaForm::Dates, true, &calendarPrintout},
    {1345, "Booking Summary", CriteriaForm::Dates, true, &bookingSummary},
    {1346, "Extras Report", CriteriaForm::Dates, true, &extrasReport},
    {1347, "Client Report", CriteriaForm::ClientSearch, false, &clientReport},
    {1348, "Arrivals/Departures", CriteriaForm::Dates, true, &arrivalsDepartures},
    {1349, "In-House Report", CriteriaForm::OneDate, false, &inHouseReport},
    {6200, "Outstanding Accounts", CriteriaForm::Dates, true, &outstandingAccounts},
    {6201, "Debtors", CriteriaForm::OneDate, false, &debtorsReport},
    {6202, "Transactions", CriteriaForm::TransactionSearch, true, &transactionsReport},
    {1351, "Marketing Report", CriteriaForm::Dates, true, &marketingReport},
    {1352, "Payments Report", CriteriaForm::Dates, true, &paymentsReport},
    {1353, "Security Audit", CriteriaForm::Dates, true, &securityAudit},
};

bool known(int number)
{
    return number >= report::First && number <= report::Last;
}

const ReportEntry &entry(int number)
{
    Q_ASSERT(known(number));
    return Reports[number - 1];
}

QDate firstOfMonth(const QDate &day)
{
    return QDate(day.year(), day.month(), 1);
}

Refusal criteriaRefusal(int id, const char *text)
{
    return Refusal(id, QString::fromUtf8(text), 6223, QStringLiteral("Invalid report criteria"));
}

} // namespace

QString reportName(int number)
{
    if (!known(number))
        return {};
    return getString(entry(number).nameId, QString::fromUtf8(entry(number).name));
}

CriteriaForm criteriaForm(int number)
{
    return known(number) ? entry(number).form : CriteriaForm::Dates;
}

bool takesToDate(int number)
{
    return known(number) && entry(number).toDate;
}

bool takesOrientation(int number)
{
    return number == report::CalendarPrintout;
}

QString reportFileName(int number, const QDateTime &when)
{
    QString name = reportName(number);
    for (QChar &c : name) {
        if (c == QLatin1Char('/') || c == QLatin1Char('\\') || c == QLatin1Char(':') || c.category() == QChar::Other_Control)
            c = QLatin1Char('-');
    }
    return name + when.toString(QStringLiteral(" yyyy-MM-dd hhmmss")) + QStringLiteral(".xlsx");
}

QChar rememberedOrientation(Database &db)
{
    return getPreference(db, OrientationPreference) == QLatin1String("L") ? QLatin1Char('L') : QLatin1Char('P');
}

ReportCriteria defaultCriteria(int number, const QDate &today, QChar orientation)
{
    ReportCriteria criteria;
    criteria.today = today;
    criteria.orientation = orientation;
    const QDate first = firstOfMonth(today);
    const QDate last = first.addMonths(1).addDays(-1);
    switch (number) {
    case report::CalendarPrintout:
        if (orientation == QLatin1Char('L')) {
            criteria.from = today;
            criteria.to = today.addDays(13);
        } else {
            criteria.from = first;
            criteria.to = last;
        }
        break;
    case report::Clients:
        break;
    case report::ArrivalsDepartures:
        criteria.from = today;
        criteria.to = today;
        break;
    case report::InHouse:
    case report::Debtors:
        criteria.from = today;
        break;
    case report::Transactions:
        criteria.from = first.addMonths(-1);
        criteria.to = first.addDays(-1);
        break;
    default:
        criteria.from = first;
        criteria.to = last;
        break;
    }
    return criteria;
}

Outcome checkCriteria(int number, const ReportCriteria &criteria)
{
    if (!known(number))
        return Refusal(6218, QStringLiteral("There is no report number %1."), 1343, QStringLiteral("Reports")).arg(number);
    const CriteriaForm form = criteriaForm(number);
    if (form != CriteriaForm::ClientSearch &&
        (!criteria.from.isValid() || (takesToDate(number) && !criteria.to.isValid())))
        return criteriaRefusal(6219, "Please choose the dates of the report.");
    if (takesToDate(number) && criteria.from > criteria.to) {
        if (form == CriteriaForm::TransactionSearch)
            return Refusal(6204, QStringLiteral("Start date is after the end date."), 6205, QStringLiteral("Date error"));
        return Refusal(2145, QStringLiteral("From date cannot be later than To date."), 1705,
                       QStringLiteral("Incorrect dates"));
    }
    if (takesOrientation(number) && criteria.orientation != QLatin1Char('P') && criteria.orientation != QLatin1Char('L'))
        return criteriaRefusal(6226, "The orientation is P (portrait) or L (landscape).");
    if (form == CriteriaForm::ClientSearch) {
        if (!criteria.clientType.isEmpty() && clientTypeName(criteria.clientType).isEmpty())
            return criteriaRefusal(6220, "%1 is not a client type.").arg(criteria.clientType);
        if (!criteria.fieldType.isEmpty() && !clientExtraFieldTypes().contains(criteria.fieldType))
            return criteriaRefusal(6221, "%1 is not a client field.").arg(criteria.fieldType);
    }
    if (form == CriteriaForm::TransactionSearch && !criteria.tranType.isEmpty() &&
        !QStringList{QStringLiteral("INV"), QStringLiteral("PMT"), QStringLiteral("CRN"), QStringLiteral("JNL")}.contains(
            criteria.tranType))
        return criteriaRefusal(6222, "%1 is not a transaction type.").arg(criteria.tranType);
    return Done{};
}

Result<ReportSheet> runReport(Database &db, int number, const ReportCriteria &criteria)
{
    const Outcome checked = checkCriteria(number, criteria);
    if (!checked)
        return checked.refusal();
    if (takesOrientation(number))
        setPreference(db, OrientationPreference, QString(criteria.orientation));
    return entry(number).build(db, criteria);
}

} // namespace fenlark
