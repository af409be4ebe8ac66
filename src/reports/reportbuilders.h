#pragma once

#include "reports/reportcatalogue.h"

namespace fenlark {

// Each report read from the database and laid out on a sheet; the criteria
// have been checked by runReport.
ReportSheet calendarPrintout(Database &db, const ReportCriteria &criteria);
ReportSheet bookingSummary(Database &db, const ReportCriteria &criteria);
ReportSheet extrasReport(Database &db, const ReportCriteria &criteria);
ReportSheet clientReport(Database &db, const ReportCriteria &criteria);
ReportSheet arrivalsDepartures(Database &db, const ReportCriteria &criteria);
ReportSheet inHouseReport(Database &db, const ReportCriteria &criteria);
ReportSheet outstandingAccounts(Database &db, const ReportCriteria &criteria);
ReportSheet debtorsReport(Database &db, const ReportCriteria &criteria);
ReportSheet transactionsReport(Database &db, const ReportCriteria &criteria);
ReportSheet marketingReport(Database &db, const ReportCriteria &criteria);
ReportSheet paymentsReport(Database &db, const ReportCriteria &criteria);
ReportSheet securityAudit(Database &db, const ReportCriteria &criteria);

} // namespace fenlark
