#pragma once

#include "rates/ratedata.h"
#include "shell/statuscolours.h"

#include <QHash>
#include <QList>
#include <QSqlQuery>
#include <QString>
#include <QTime>
#include <QVariant>

namespace fenlark {

class Database;

// The day and the time of day of a date or date-time column, read as the ISO
// text they are kept in (invalid for anything else).
QDate sqlDay(const QVariant &value);
QTime sqlTime(const QVariant &value);

// The client's full name from four columns of a row (title, first name, surname,
// company) starting at firstColumn; empty when the client was missing from a
// left join.
QString clientNameAt(const QSqlQuery &q, int firstColumn);

// The bookings an account is for: those on the account as a whole and those
// with a room billed to it, ascending, each once. None for account 0 (a payment
// that is on no account).
QList<qint32> relatedBookings(Database &db, qint32 accountId);
// "12, 15, 20".
QString joinKeys(const QList<qint32> &keys);

// "Online Booking" for what came through the server's channels, "Off-line
// Booking" for what was made at the desk.
QString bookingTypeGroup(const QString &bookingType);

// The translated name of a booking status; the code itself when it is unknown.
class StatusNames {
public:
    explicit StatusNames(Database &db);
    QString name(const QString &code) const;

private:
    StatusColours m_statuses;
};

// The names of rate codes, read once per report.
class RateNames {
public:
    explicit RateNames(Database &db);
    QString name(qint32 BBRateID);

private:
    RateData m_rates;
    QHash<qint32, QString> m_names;
};

} // namespace fenlark
