#include "bookings/bookingrecords.h"

#include "bookings/staydates.h"
#include "shell/money.h"

namespace fenlark {

QDateTime reservedUntilNewHead()
{
    return QDateTime(QDate(1899, 12, 30), QTime(0, 0));
}

QDateTime reservedUntilEditorSave()
{
    return QDateTime(QDate(1899, 12, 31), QTime(0, 0));
}

QDateTime reservedUntilForSave(const QString &status, const QDateTime &chosenHold)
{
    if (status == QLatin1String("R") || status == QLatin1String("P"))
        return chosenHold;
    return reservedUntilEditorSave();
}

const std::vector<Column<Booking>> &Booking::columns()
{
    static const std::vector<Column<Booking>> c = {
        {"BookingID", &Booking::BookingID},
        {"BookingType", &Booking::BookingType},
        {"BookingDate", &Booking::BookingDate},
        {"FromDate", &Booking::FromDate},
        {"ToDate", &Booking::ToDate},
        {"Status", &Booking::Status},
        {"MadeBy", &Booking::MadeBy},
        {"Deposit", &Booking::Deposit},
        {"BBRateSheetID", &Booking::BBRateSheetID},
        {"BBAccountID", &Booking::BBAccountID},
        {"AgentComm", &Booking::AgentComm},
        {"ExtBookingID", &Booking::ExtBookingID, true},
        {"Source", &Booking::Source},
        {"Notes", &Booking::Notes},
        {"ReservedUntil", &Booking::ReservedUntil},
        {"CurrencyCode", &Booking::CurrencyCode},
        {"ExchangeRate", &Booking::ExchangeRate},
    };
    return c;
}

int Booking::nights() const
{
    return nightCount(FromDate, ToDate);
}

const std::vector<Column<Guest>> &Guest::columns()
{
    static const std::vector<Column<Guest>> c = {
        {"GuestID", &Guest::GuestID},
        {"BBBookingID", &Guest::BBBookingID},
        {"BBRoomID", &Guest::BBRoomID},
        {"BBClientID", &Guest::BBClientID},
        {"NoAdults", &Guest::NoAdults},
        {"Child1", &Guest::Child1},
        {"Child2", &Guest::Child2},
        {"BBRateID", &Guest::BBRateID},
        {"BBClient2ID", &Guest::BBClient2ID},
        {"BBAccountID", &Guest::BBAccountID},
        {"Reference", &Guest::Reference},
        {"CheckInOut", &Guest::CheckInOut},
    };
    return c;
}

bool Guest::fetchLeg(Database &db, qint32 bookingId, qint32 roomId)
{
    QSqlQuery q = db.query(QStringLiteral("select * from guest where bbbookingid = ? and bbroomid = ? order by bbguestid"),
                           {bookingId, roomId});
    if (!q.next())
        return false;
    fillFields(q.record());
    return true;
}

bool Guest::legExists(Database &db, qint32 bookingId, qint32 roomId, qint32 exceptGuestId)
{
    return db.scalar(QStringLiteral("select bbguestid from guest where bbbookingid = ? and bbroomid = ? and bbguestid <> ?"),
                     {bookingId, roomId, exceptGuestId})
        .isValid();
}

std::vector<Guest> Guest::legsOf(Database &db, qint32 bookingId)
{
    std::vector<Guest> legs;
    QSqlQuery q = db.query(QStringLiteral("select * from guest where bbbookingid = ? order by bbguestid"), {bookingId});
    while (q.next()) {
        Guest leg;
        leg.fillFields(q.record());
        legs.push_back(std::move(leg));
    }
    return legs;
}

const std::vector<Column<DailyRate>> &DailyRate::columns()
{
    static const std::vector<Column<DailyRate>> c = {
        {"CalDate", &DailyRate::CalDate},
        {"BBBookingID", &DailyRate::BBBookingID},
        {"BBRoomID", &DailyRate::BBRoomID},
        {"RoomRate", &DailyRate::RoomRate},
    };
    return c;
}

void DailyRate::update(Database &db) const
{
    DailyRate rounded = *this;
    rounded.RoomRate = roundMoney(RoomRate);
    rounded.UnloggedRecord<DailyRate>::update(db);
}

void DailyRate::deleteBooking(Database &db, qint32 bookingId)
{
    Transaction transaction(db);
    db.execute(QStringLiteral("delete from dailyrate where bbbookingid = ?"), {bookingId});
    ChangeLog::logUpdate(db, QStringLiteral("booking"), bookingId);
    transaction.commit();
}

void DailyRate::remove(Database &db, qint32 bookingId, qint32 roomId)
{
    Transaction transaction(db);
    db.execute(QStringLiteral("delete from dailyrate where bbbookingid = ? and bbroomid = ?"), {bookingId, roomId});
    ChangeLog::logUpdate(db, QStringLiteral("booking"), bookingId);
    transaction.commit();
}

void DailyRate::changeRoom(Database &db, qint32 bookingId, qint32 oldRoomId, qint32 newRoomId)
{
    db.execute(QStringLiteral("update dailyrate set bbroomid = ? where bbbookingid = ? and bbroomid = ?"),
               {newRoomId, bookingId, oldRoomId});
}

void DailyRate::deleteBeforeDate(Database &db, qint32 bookingId, const QDate &date)
{
    db.execute(QStringLiteral("delete from dailyrate where bbbookingid = ? and caldate < ?"), {bookingId, sqlDate(date)});
}

void DailyRate::deleteAfterDate(Database &db, qint32 bookingId, const QDate &date)
{
    db.execute(QStringLiteral("delete from dailyrate where bbbookingid = ? and caldate >= ?"), {bookingId, sqlDate(date)});
}

void DailyRate::changeBookingID(Database &db, qint32 oldBookingId, qint32 newBookingId, qint32 roomId)
{
    db.execute(QStringLiteral("update dailyrate set bbbookingid = ? where bbbookingid = ? and bbroomid = ?"),
               {newBookingId, oldBookingId, roomId});
}

int DailyRate::removeOrphans(Database &db, qint32 bookingId, qint32 roomId)
{
    return db.execute(QStringLiteral("delete from dailyrate where bbbookingid = ? and bbroomid = ? and not exists "
                                     "(select 1 from guest where guest.bbbookingid = ? and guest.bbroomid = ?)"),
                      {bookingId, roomId, bookingId, roomId});
}

double DailyRate::fetchAvgDailyRate(Database &db, qint32 guestId, qint32 bookingId)
{
    const QVariant avg = db.scalar(
        QStringLiteral("select avg(roomrate) as avgrate from guest, dailyrate where guest.bbbookingid = dailyrate.bbbookingid "
                       "and guest.bbroomid = dailyrate.bbroomid and guest.bbbookingid = ? and guest.bbguestid = ?"),
        {bookingId, guestId});
    return avg.isNull() ? 0.0 : avg.toDouble();
}

std::vector<DailyRate> DailyRate::forLeg(Database &db, qint32 bookingId, qint32 roomId)
{
    return select(db, QStringLiteral("select * from dailyrate where bbbookingid = ? and bbroomid = ? order by caldate"),
                  {bookingId, roomId});
}

} // namespace fenlark
