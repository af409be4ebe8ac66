#include "bookings/bookingsearch.h"

#include "shell/database.h"
#include "shell/displaynames.h"
#include "shell/textcompare.h"

#include <QRegularExpression>

namespace fenlark {

namespace {

// The statement that gives the keys of the bookings found.
struct KeyQuery {
    QString sql;
    QVariantList values;
};

std::optional<qint32> wholeNumber(const QString &text)
{
    static const QRegularExpression digits(QStringLiteral("^[0-9]{1,10}$"));
    if (!digits.match(text).hasMatch())
        return std::nullopt;
    const qint64 value = text.toLongLong();
    if (value < 1 || value > std::numeric_limits<qint32>::max())
        return std::nullopt;
    return static_cast<qint32>(value);
}

Refusal notANumber(const QString &text)
{
    return Refusal(6440, QStringLiteral("\"%1\" is not a number the desk keeps: type a whole number from 1 to 2147483647."), 6441,
                   QStringLiteral("Incorrect number"))
        .arg(text.left(40));
}

// The bookings whose head or one of whose rooms is billed on the account of that number.
KeyQuery byDocument(const char *column, qint32 number)
{
    const QString c = QLatin1String(column);
    return {QStringLiteral("select booking.BBBookingID from account join booking on account.BBAccountID = booking.BBAccountID "
                           "where account.%1 = ? union select guest.BBBookingID from account join guest "
                           "on account.BBAccountID = guest.BBAccountID where account.%1 = ?")
                .arg(c),
            {number, number}};
}

// The name boxes and the status, through the maker, the room's guest and its
// second guest in turn.
std::optional<KeyQuery> byNames(const BookingSearchCriteria &criteria)
{
    QString where;
    QVariantList values;
    bool folded = false;
    const std::pair<const QString *, const char *> names[] = {
        {&criteria.firstName, " and f.FirstName like ?"},
        {&criteria.surname, " and f.Surname like ?"},
        {&criteria.company, " and f.Company like ?"},
    };
    for (const auto &[typed, condition] : names) {
        const QString text = typed->trimmed();
        if (text.isEmpty())
            continue;
        where += QLatin1String(condition);
        values << QVariant(foldCase(text) + QLatin1Char('%'));
        folded = true;
    }
    const std::pair<const QString *, const char *> contacts[] = {
        {&criteria.phone, " and c.PhoneNo like ?"},
        {&criteria.email, " and c.Email like ?"},
    };
    bool contact = false;
    for (const auto &[typed, condition] : contacts) {
        const QString text = typed->trimmed();
        if (text.isEmpty())
            continue;
        where += QLatin1String(condition);
        values << QVariant(text + QLatin1Char('%'));
        contact = true;
    }
    const QString status = criteria.status.trimmed();
    if (!folded && !contact) {
        if (status.isEmpty())
            return std::nullopt;
        return KeyQuery{QStringLiteral("select BBBookingID from booking where Status = ?"), {status}};
    }
    if (!status.isEmpty()) {
        where += QStringLiteral(" and booking.Status = ?");
        values << status;
    }
    const QString fold = folded ? QStringLiteral(" join clientfold f on f.BBClientID = c.BBClientID") : QString();
    const QString routes[] = {
        QStringLiteral("select booking.BBBookingID from booking join client c on booking.MadeBy = c.BBClientID"),
        QStringLiteral("select booking.BBBookingID from booking join guest on guest.BBBookingID = booking.BBBookingID "
                       "join client c on guest.BBClientID = c.BBClientID"),
        QStringLiteral("select booking.BBBookingID from booking join guest on guest.BBBookingID = booking.BBBookingID "
                       "join client c on guest.BBClient2ID = c.BBClientID"),
    };
    KeyQuery query;
    for (const QString &route : routes) {
        if (!query.sql.isEmpty())
            query.sql += QStringLiteral(" union ");
        query.sql += route + fold + QStringLiteral(" where 1 = 1") + where;
        query.values += values;
    }
    return query;
}

Result<KeyQuery> keyQuery(const BookingSearchCriteria &criteria)
{
    const std::pair<const QString *, int> numbers[] = {
        {&criteria.invoiceNo, 0}, {&criteria.proformaNo, 1}, {&criteria.bookingId, 2}, {&criteria.serverId, 3}};
    for (const auto &[typed, which] : numbers) {
        const QString text = typed->trimmed();
        if (text.isEmpty())
            continue;
        const std::optional<qint32> number = wholeNumber(text);
        if (!number)
            return notANumber(text);
        switch (which) {
        case 0:
            return byDocument("InvoiceNo", *number);
        case 1:
            return byDocument("ProformaNo", *number);
        case 2:
            return KeyQuery{QStringLiteral("select BBBookingID from booking where BBBookingID = ?"), {*number}};
        default:
            return KeyQuery{QStringLiteral("select BBBookingID from booking where BookingID = ?"), {*number}};
        }
    }
    const QString reference = criteria.reference.trimmed();
    if (!reference.isEmpty())
        return KeyQuery{QStringLiteral("select BBBookingID from guest where Reference like ?"), {QVariant(reference + QLatin1Char('%'))}};
    if (std::optional<KeyQuery> names = byNames(criteria))
        return *names;
    return Refusal(6442, QStringLiteral("You need to type in some search criteria."), 6443,
                   QStringLiteral("No search criteria entered."))
        .asInformation();
}

} // namespace

Result<std::vector<BookingSearchRow>> searchBookings(Database &db, const BookingSearchCriteria &criteria)
{
    Result<KeyQuery> keys = keyQuery(criteria);
    if (!keys)
        return keys.refusal();
    // One joined statement over the keys found: "in" makes each booking appear
    // once, whichever routes found it.
    QSqlQuery q = db.query(QStringLiteral("select b.BBBookingID, g.BBRoomID, b.FromDate, r.RoomName, "
                                          "m.Title, m.FirstName, m.Surname, m.Company, c.Title, c.FirstName, c.Surname, c.Company "
                                          "from booking b join guest g on g.BBBookingID = b.BBBookingID "
                                          "left join room r on r.BBRoomID = g.BBRoomID "
                                          "left join client m on m.BBClientID = b.MadeBy "
                                          "left join client c on c.BBClientID = g.BBClientID "
                                          "where b.BBBookingID in (%1) order by b.BBBookingID desc, r.OrderBy, g.BBRoomID")
                               .arg(keys->sql),
                           keys->values);
    std::vector<BookingSearchRow> rows;
    while (q.next()) {
        BookingSearchRow row;
        row.BBBookingID = q.value(0).toInt();
        row.BBRoomID = q.value(1).toInt();
        row.arrival = dateFromSql(q.value(2));
        row.roomName = q.value(3).isNull() ? QString::number(row.BBRoomID) : q.value(3).toString();
        if (!q.value(5).isNull() || !q.value(6).isNull() || !q.value(7).isNull())
            row.madeBy = clientName(q.value(4).toString(), q.value(5).toString(), q.value(6).toString(), q.value(7).toString());
        if (!q.value(9).isNull() || !q.value(10).isNull() || !q.value(11).isNull())
            row.guest = clientName(q.value(8).toString(), q.value(9).toString(), q.value(10).toString(), q.value(11).toString());
        rows.push_back(std::move(row));
    }
    return rows;
}

} // namespace fenlark
