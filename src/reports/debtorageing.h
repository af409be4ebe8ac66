#pragma once

#include <QDate>

namespace fenlark {

// The age columns of the Debtors report.
enum class DebtAge { Current, Days30, Days60, Days90, Future };

// The four limit dates: today, and each next one a calendar month before the one
// it follows (by adding months, not by counting 30 days: from 31 May the limits
// are 30 April, 30 March and 28 February).
struct AgeLimits {
    QDate current;
    QDate days30;
    QDate days60;
    QDate days90;

    static AgeLimits from(const QDate &today);
    // The column of a ledger row: the oldest limit its date does not pass. A row
    // dated after today falls under none.
    DebtAge ageOf(const QDate &tranDate) const;
};

} // namespace fenlark
