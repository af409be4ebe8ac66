#pragma once

#include <QLocale>
#include <QString>

namespace fenlark {

class Database;
class RateData;

// The locale documents are written in: the program's language, so that month and
// day names match the texts around them.
QLocale documentLocale();
// A date in a document, by a pattern such as "dd MMM yy".
QString documentDate(const QDate &date, const QString &pattern);

// The symbol of the property's currency (bbsetup's CurrencyCode: "ZAR" gives "R");
// the code and a blank when no locale knows the code, nothing when there is no code.
QString propertyCurrencySymbol(Database &db);
// An amount with two decimals behind the currency symbol.
QString moneyText(const QString &symbol, double amount);

// The part of the rate data that names rates (room types, rate codes, meal plans,
// packages): enough for getRateName, without the rate periods a price needs, so
// a letter or an invoice does not wait for the whole rate sheet to be read.
RateData loadRateNames(Database &db);

// "2 Adults, 1 Child": the adults always, the children only when there are any;
// the plural unless the count is exactly one.
QString guestsText(int adults, int children);
// Title, first name and surname joined by blanks and left-trimmed, no company.
QString personName(const QString &title, const QString &firstName, const QString &surname);

} // namespace fenlark
