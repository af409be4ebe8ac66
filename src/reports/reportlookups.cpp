#include "reports/reportlookups.h"

#include "clients/clientnames.h"
#include "rates/roomrates.h"
#include "shell/database.h"
#include "shell/strings.h"

#include <QVariant>

namespace fenlark {

QDate sqlDay(const QVariant &value)
{
    return QDate::fromString(value.toString().left(10), Qt::ISODate);
}

QTime sqlTime(const QVariant &value)
{
    const QString text = value.toString();
    return text.size() >= 19 ? QTime::fromString(text.mid(11, 8), Qt::ISODate) : QTime(0, 0);
}

QString clientNameAt(const QSqlQuery &q, int firstColumn)
{
    if (q.value(firstColumn).isNull())
        return {};
    return clientName(q.value(firstColumn).toString(), q.value(firstColumn + 1).toString(),
                      q.value(firstColumn + 2).toString(), q.value(firstColumn + 3).toString());
}

QList<qint32> relatedBookings(Database &db, qint32 accountId)
{
    QList<qint32> keys;
    if (accountId < 1)
        return keys;
    for (const char *sql : {"select BBBookingID from booking where BBAccountID = ?",
                            "select BBBookingID from guest where BBAccountID = ?"}) {
        QSqlQuery &q = db.repeatedQuery(QString::fromLatin1(sql), {accountId});
        while (q.next())
            keys << q.value(0).toInt();
    }
    std::sort(keys.begin(), keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    return keys;
}

QString joinKeys(const QList<qint32> &keys)
{
    QStringList texts;
    for (qint32 key : keys)
        texts << QString::number(key);
    return texts.join(QStringLiteral(", "));
}

QString bookingTypeGroup(const QString &bookingType)
{
    if (bookingType == QLatin1String("P"))
        return getString(6247, QStringLiteral("Off-line Booking"));
    return getString(6246, QStringLiteral("Online Booking"));
}

StatusNames::StatusNames(Database &db)
{
    m_statuses.load(db);
}

QString StatusNames::name(const QString &code) const
{
    const Status *status = m_statuses.find(code);
    return status ? status->Description : code;
}

RateNames::RateNames(Database &db) : m_rates(RateData::load(db)) {}

QString RateNames::name(qint32 BBRateID)
{
    auto found = m_names.constFind(BBRateID);
    if (found == m_names.constEnd())
        found = m_names.insert(BBRateID, getRateName(m_rates, BBRateID));
    return *found;
}

} // namespace fenlark
