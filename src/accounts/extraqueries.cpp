#include "accounts/extraqueries.h"

namespace fenlark {

namespace {

std::vector<Extra> selectExtras(Database &db, const QString &sql, const QVariantList &values)
{
    std::vector<Extra> extras;
    QSqlQuery q = db.query(sql, values);
    while (q.next()) {
        Extra extra;
        extra.fillFields(q.record());
        extras.push_back(std::move(extra));
    }
    return extras;
}

} // namespace

std::vector<Extra> getExtras(Database &db, qint32 accountId)
{
    return selectExtras(db, QStringLiteral("select * from extra where bbaccountid = ? order by extradate, bbextraid"), {accountId});
}

std::vector<Extra> getExtrasByRoom(Database &db, qint32 guestId)
{
    return selectExtras(db, QStringLiteral("select * from extra where bbguestid = ? order by extradate, bbextraid"), {guestId});
}

std::vector<Extra> getExtrasByBookingAndAccount(Database &db, qint32 bookingId, qint32 accountId)
{
    return selectExtras(db,
                        QStringLiteral("select extra.* from extra, guest where extra.bbguestid = guest.bbguestid "
                                       "and guest.bbbookingid = ? and extra.bbaccountid = ? order by extra.extradate, extra.bbextraid"),
                        {bookingId, accountId});
}

std::vector<Extra> getExtrasByRoomAndAccount(Database &db, qint32 guestId, qint32 accountId)
{
    return selectExtras(db,
                        QStringLiteral("select * from extra where bbguestid = ? and bbaccountid = ? order by extradate, bbextraid"),
                        {guestId, accountId});
}

} // namespace fenlark
