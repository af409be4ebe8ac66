#include "reports/printbooking.h"

#include "accounts/accountrecords.h"
#include "bookings/bookingcodes.h"
#include "bookings/bookingrecords.h"
#include "clients/clientnames.h"
#include "clients/clientrecords.h"
#include "rates/ratedata.h"
#include "rates/raterecords.h"
#include "rates/roomrates.h"
#include "reports/docxtemplate.h"
#include "reports/documenttext.h"
#include "reports/templates.h"
#include "shell/config.h"
#include "shell/database.h"
#include "shell/home.h"
#include "shell/money.h"
#include "shell/strings.h"
#include "shell/textformat.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

namespace fenlark {

namespace {

const QString LineEnd = QStringLiteral("\n");

Refusal bookingNotFound(qint32 bookingId)
{
    return Refusal(2294, QStringLiteral("Could not fetch booking data (%1)"), 1934, QStringLiteral("Booking not found."))
        .arg(bookingId);
}

// What every letter and the summary read of a booking.
struct BookingFacts {
    Booking booking;
    Client madeBy;
    double roomTotal = 0;
    int rooms = 0;
    int guests = 0;
    double receipts = 0;
    QDate lastPayment;
};

std::optional<BookingFacts> readBooking(Database &db, qint32 bookingId)
{
    BookingFacts facts;
    if (!facts.booking.fetch(db, bookingId))
        return std::nullopt;
    facts.madeBy.fetch(db, facts.booking.MadeBy);
    facts.roomTotal = roundMoney(
        db.scalar(QStringLiteral("select sum(roomrate) from guest join dailyrate on guest.bbbookingid = dailyrate.bbbookingid "
                                 "and guest.bbroomid = dailyrate.bbroomid where guest.bbbookingid = ?"),
                  {bookingId})
            .toDouble());
    QSqlQuery counts = db.query(
        QStringLiteral("select count(*), sum(noadults + child1 + child2) from guest where bbbookingid = ?"), {bookingId});
    if (counts.next()) {
        facts.rooms = counts.value(0).toInt();
        facts.guests = counts.value(1).toInt();
    }
    QSqlQuery paid = db.query(QStringLiteral("select sum(amount), max(paymentdate) from payment where bbaccountid = ?"),
                              {facts.booking.BBAccountID});
    if (paid.next()) {
        facts.receipts = roundMoney(paid.value(0).toDouble());
        facts.lastPayment = dateFromSql(paid.value(1));
    }
    return facts;
}

double extrasTotalOf(Database &db, qint32 bookingId)
{
    return roundMoney(db.scalar(QStringLiteral("select sum(extra.qty * extra.price) from guest join extra on guest.bbguestid = "
                                               "extra.bbguestid where guest.bbbookingid = ?"),
                                {bookingId})
                          .toDouble());
}

QString longDate(const QDate &date)
{
    return documentDate(date, QStringLiteral("ddd dd MMMM yyyy"));
}

void bookingBookmarks(Database &db, const BookingFacts &f, double extrasTotal, QHash<QString, QString> &values)
{
    const Booking &b = f.booking;
    const Client &c = f.madeBy;
    auto put = [&](int id, const char *name, const QString &value) { values.insert(getString(id, QString::fromLatin1(name)), value); };
    put(1935, "Today", documentLocale().toString(QDate::currentDate(), QLocale::LongFormat));
    values.insert(QStringLiteral("BookingID"), QString::number(b.BBBookingID));
    put(1936, "VMID", QString::number(b.BookingID));
    put(1937, "MadeBy", personName(c.Title, c.FirstName, c.Surname));
    put(1938, "MadeByPhone", c.PhoneNo);
    put(1940, "MadeByEmail", c.Email);
    put(1942, "MadeByFax", getClientExtra(db, c.BBClientID, QStringLiteral("F")));
    put(1943, "MadeByCell", getClientExtra(db, c.BBClientID, QStringLiteral("C")));
    put(1944, "MadeByTitle", c.Title);
    put(1948, "MadeByFirstName", c.FirstName);
    put(1950, "MadeBySurname", c.Surname);
    put(1952, "MadeByCompany", c.Company);
    put(1955, "MadeByVATNo", c.VatNo);
    put(1954, "MadeByAdd1", c.Add1);
    put(1956, "MadeByAdd2", c.Add2);
    put(1689, "Arrival", longDate(b.FromDate));
    put(1690, "Leaving", longDate(b.ToDate));
    put(1957, "NoNights", QString::number(b.nights()));
    put(1958, "NoRooms", QString::number(f.rooms));
    put(1959, "TotGuests", QString::number(f.guests));
    put(1750, "Total", formatAmount(f.roomTotal));
    put(1960, "Deposit", formatAmount(b.Deposit));
    put(1961, "TotalPayments", formatAmount(f.receipts));
    put(1962, "Balance", formatAmount(f.roomTotal + extrasTotal - f.receipts));
    put(1963, "Notes", b.Notes);
}

Outcome registrationBookmarks(Database &db, const RateData &rates, qint32 bookingId, qint32 roomId,
                              QHash<QString, QString> &values)
{
    Guest leg;
    if (!leg.fetchLeg(db, bookingId, roomId))
        return Refusal(1964, QStringLiteral("Could not fetch guest data (%1)"), 1965, QStringLiteral("Guest information not found."))
            .arg(bookingId);
    Client guest;
    guest.fetch(db, leg.BBClientID);
    Room room;
    room.fetch(db, roomId);
    QSqlQuery q = db.query(QStringLiteral("select sum(roomrate), avg(roomrate) from dailyrate where bbbookingid = ? and bbroomid = ?"),
                           {bookingId, roomId});
    q.next();
    const double total = q.value(0).toDouble();
    const double average = q.value(1).toDouble();
    values.insert(QStringLiteral("RoomName"), room.RoomName);
    values.insert(QStringLiteral("RoomTotal"), formatAmount(total));
    values.insert(QStringLiteral("RoomRate"), formatAmount(average));
    values.insert(QStringLiteral("RateCode"), getRateName(rates, leg.BBRateID));
    values.insert(QStringLiteral("GuestName"), personName(guest.Title, guest.FirstName, guest.Surname));
    values.insert(QStringLiteral("GuestTitle"), guest.Title);
    values.insert(QStringLiteral("GuestFirstName"), guest.FirstName);
    values.insert(QStringLiteral("GuestSurname"), guest.Surname);
    values.insert(QStringLiteral("GuestCompany"), guest.Company);
    values.insert(QStringLiteral("GuestAdd1"), guest.Add1);
    values.insert(QStringLiteral("GuestAdd2"), guest.Add2);
    values.insert(QStringLiteral("GuestPhone"), guest.PhoneNo);
    values.insert(QStringLiteral("GuestEmail"), guest.Email);
    const std::pair<const char *, const char *> extras[] = {{"GuestFax", "F"}, {"GuestCell", "C"}, {"GuestID", "I"}, {"Nationality", "N"}};
    for (const auto &[name, type] : extras)
        values.insert(QString::fromLatin1(name), getClientExtra(db, leg.BBClientID, QString::fromLatin1(type)));
    values.insert(QStringLiteral("NoGuests"), QString::number(leg.NoAdults + leg.Child1 + leg.Child2));
    values.insert(QStringLiteral("Reference"), leg.Reference);
    return Done{};
}

QString nameWithCompany(Database &db, qint32 clientId)
{
    Client c;
    if (!c.fetch(db, clientId))
        return {};
    return clientName(c.Title, c.FirstName, c.Surname, c.Company);
}

double confirmationBookmarks(Database &db, const RateData &rates, const BookingFacts &f, QHash<QString, QString> &values)
{
    const QString currency = propertyCurrencySymbol(db);
    const qint32 bookingId = f.booking.BBBookingID;
    QString rooms, names, references;
    QSqlQuery legs = db.query(
        QStringLiteral("select guest.bbroomid, guest.bbrateid, guest.noadults, guest.child1 + guest.child2, guest.reference, "
                       "guest.bbclientid, guest.bbclient2id, (select avg(roomrate) from dailyrate where dailyrate.bbbookingid = "
                       "guest.bbbookingid and dailyrate.bbroomid = guest.bbroomid) "
                       "from guest left join room on guest.bbroomid = room.bbroomid where guest.bbbookingid = ? "
                       "order by room.orderby, guest.bbguestid"),
        {bookingId});
    struct Leg {
        qint32 rate, adults, children, client, client2;
        QString reference;
        double average;
    };
    std::vector<Leg> list;
    while (legs.next())
        list.push_back({legs.value(1).toInt(), legs.value(2).toInt(), legs.value(3).toInt(), legs.value(5).toInt(),
                        legs.value(6).toInt(), legs.value(4).toString(), legs.value(7).toDouble()});
    for (std::size_t i = 0; i < list.size(); ++i) {
        const Leg &leg = list[i];
        if (i > 0)
            rooms += LineEnd;
        rooms += getRateName(rates, leg.rate) + QStringLiteral(" x ") + guestsText(leg.adults, leg.children)
            + QStringLiteral(" @ ") + moneyText(currency, leg.average) + getString(1983, QStringLiteral(" per night"));
        names += nameWithCompany(db, leg.client) + LineEnd;
        if (leg.client2 > 0)
            names += nameWithCompany(db, leg.client2) + LineEnd;
        references += leg.reference + LineEnd;
    }
    rooms += LineEnd + getString(1984, QStringLiteral("Total - ")) + moneyText(currency, f.roomTotal);

    QString extras;
    double extrasTotal = 0;
    QSqlQuery q = db.query(QStringLiteral("select extra.qty, extra.price, stock.stockname from guest join extra on "
                                          "guest.bbguestid = extra.bbguestid left join stock on extra.bbstockid = stock.bbstockid "
                                          "where guest.bbbookingid = ? order by extra.extradate, extra.bbextraid"),
                           {bookingId});
    while (q.next()) {
        const double qty = q.value(0).toDouble();
        const double price = q.value(1).toDouble();
        const QString stock = q.value(2).toString();
        extras += stock + LineEnd + QString::number(qty) + QStringLiteral(" x ") + stock + QStringLiteral(" @ ")
            + moneyText(currency, price) + LineEnd;
        extrasTotal += qty * price;
    }
    extrasTotal = roundMoney(extrasTotal);
    extras += LineEnd + getString(1984, QStringLiteral("Total - ")) + moneyText(currency, extrasTotal);

    values.insert(QStringLiteral("Rooms"), rooms);
    values.insert(QStringLiteral("GuestNames"), names);
    values.insert(QStringLiteral("References"), references);
    values.insert(QStringLiteral("Extras"), extras);
    return extrasTotal;
}

QString hyphens()
{
    return QString(40, QLatin1Char('-'));
}

} // namespace

Result<QHash<QString, QString>> letterBookmarks(Database &db, const RateData &rates, LetterKind kind, qint32 bookingId,
                                                qint32 roomId)
{
    const std::optional<BookingFacts> facts = readBooking(db, bookingId);
    if (!facts)
        return bookingNotFound(bookingId);
    QHash<QString, QString> values;
    double extrasTotal = 0;
    if (kind == LetterKind::Confirmation) {
        extrasTotal = confirmationBookmarks(db, rates, *facts, values);
    } else if (Outcome guest = registrationBookmarks(db, rates, bookingId, roomId, values); !guest) {
        return guest.refusal();
    }
    bookingBookmarks(db, *facts, extrasTotal, values);
    return values;
}

Result<QString> bookingSummaryText(Database &db, qint32 bookingId)
{
    const std::optional<BookingFacts> facts = readBooking(db, bookingId);
    if (!facts)
        return Refusal(1904, QStringLiteral("Could not open booking ID %1"), 511, QStringLiteral("Error")).arg(bookingId);
    const Booking &b = facts->booking;
    Account account;
    account.fetch(db, b.BBAccountID);
    const double extrasTotal = extrasTotalOf(db, bookingId);
    const QString madeBy = facts->madeBy.BBClientID > 0 ? facts->madeBy.FullName() : QString();

    QStringList lines;
    lines << getString(1905, QStringLiteral("Booking ID: ")) + QString::number(b.BBBookingID)
                 + getString(1906, QStringLiteral("  VMID: ")) + QString::number(b.BookingID)
          << QString();
    lines << getString(1907, QStringLiteral("Source: "))
                 + (b.Source.trimmed().isEmpty() ? getString(1908, QStringLiteral("<Blank>")) : b.Source.trimmed())
          << QString();
    lines << getString(1909, QStringLiteral("Made By: ")) + madeBy;
    lines << getString(1910, QStringLiteral("Invoice To: ")) + nameWithCompany(db, account.InvoiceTo);
    lines << getString(1911, QStringLiteral("Status: ")) + bookingStatusName(b.Status);
    lines << getString(1912, QStringLiteral("Accomm: ")) + formatAmount(facts->roomTotal);
    lines << getString(1913, QStringLiteral("Extras: ")) + formatAmount(extrasTotal);
    QString receipts = getString(1914, QStringLiteral("Receipts: ")) + formatAmount(facts->receipts);
    if (facts->lastPayment.isValid())
        receipts += getString(1915, QStringLiteral(", last payment: ")) + documentDate(facts->lastPayment, QStringLiteral("ddd dd MMM yyyy"));
    lines << receipts;
    lines << getString(1301, QStringLiteral("Balance O/S: ")) + formatAmount(facts->roomTotal + extrasTotal - facts->receipts);
    lines << (account.InvoiceNo > 0 ? getString(1917, QStringLiteral("Invoice No.: ")) + QString::number(account.InvoiceNo)
                                    : getString(1916, QStringLiteral("Pro forma No.: ")) + QString::number(account.ProformaNo))
          << QString();
    const QString dateForm = QStringLiteral("dd ddd MMM yyyy");
    lines << getString(1296, QStringLiteral("Arriving: ")) + documentDate(b.FromDate, dateForm);
    lines << getString(1918, QStringLiteral("Leaving: ")) + documentDate(b.ToDate, dateForm);
    lines << getString(1919, QStringLiteral("Staying: ")) + QString::number(b.nights())
                 + (b.nights() == 1 ? getString(1855, QStringLiteral(" night")) : getString(1856, QStringLiteral(" nights")))
          << QString();
    lines << getString(1920, QStringLiteral("Notes-----------------------------------"));
    lines << (b.Notes.trimmed().isEmpty() ? getString(1921, QStringLiteral("<No notes>")) : b.Notes);
    lines << hyphens();

    QSqlQuery legs = db.query(
        QStringLiteral("select guest.noadults, guest.child1 + guest.child2, room.roomname, client.title, client.firstname, "
                       "client.surname, guest.bbaccountid from guest left join room on guest.bbroomid = room.bbroomid "
                       "left join client on guest.bbclientid = client.bbclientid where guest.bbbookingid = ? "
                       "order by room.orderby, guest.bbguestid"),
        {bookingId});
    while (legs.next()) {
        const int adults = legs.value(0).toInt();
        const int children = legs.value(1).toInt();
        QString line = QString::number(adults)
            + (adults == 1 ? getString(1922, QStringLiteral(" Adult, ")) : getString(1923, QStringLiteral(" Adults, ")))
            + QString::number(children)
            + (children == 1 ? getString(1924, QStringLiteral(" Child")) : getString(1925, QStringLiteral(" Children")))
            + getString(1926, QStringLiteral(" in ")) + legs.value(2).toString() + QStringLiteral("  ")
            + personName(legs.value(3).toString(), legs.value(4).toString(), legs.value(5).toString());
        const qint32 legAccount = legs.value(6).toInt();
        if (legAccount > 0 && legAccount != b.BBAccountID)
            line += getString(6829, QStringLiteral(" (Invoiced to guest)"));
        lines << line;
    }
    lines << hyphens();
    return lines.join(LineEnd) + LineEnd;
}

PrintBooking::PrintBooking(Database &db, const RateData &rates, int dbNumber, QString folder)
    : m_db(db)
    , m_rates(rates)
    , m_dbNumber(dbNumber)
    , m_folder(std::move(folder))
{
}

std::vector<qint32> PrintBooking::otherRooms(qint32 bookingId, qint32 roomId)
{
    std::vector<qint32> rooms;
    QSqlQuery q = m_db.query(QStringLiteral("select guest.bbroomid from guest left join room on guest.bbroomid = room.bbroomid "
                                            "where guest.bbbookingid = ? and guest.bbroomid <> ? order by room.orderby, guest.bbguestid"),
                             {bookingId, roomId});
    while (q.next())
        rooms.push_back(q.value(0).toInt());
    return rooms;
}

QString PrintBooking::templatePath(LetterKind kind) const
{
    const QString stem = kind == LetterKind::Confirmation ? QStringLiteral("Confirmation") : QStringLiteral("Registration");
    return findTemplate(stem, m_dbNumber, {QStringLiteral("docx"), QStringLiteral("dotx")});
}

Result<QString> PrintBooking::outputFolder() const
{
    const QString dir = !m_folder.isEmpty()
        ? m_folder
        : Home::file(m_dbNumber > 0 ? QStringLiteral("letters%1").arg(m_dbNumber) : QStringLiteral("letters"));
    if (m_folder.isEmpty())
        QDir().mkpath(dir);
    if (!QFileInfo(dir).isDir())
        return Refusal(6828, QStringLiteral("The folder %1 does not exist."), 6821, QStringLiteral("Folder does not exist."))
            .arg(QDir::toNativeSeparators(dir));
    return QDir(dir).absolutePath() + QLatin1Char('/');
}

Result<PrintedLetter> PrintBooking::printLetter(LetterKind kind, qint32 bookingId, qint32 roomId)
{
    const QString source = templatePath(kind);
    if (!QFileInfo::exists(source))
        return Refusal(1929, QStringLiteral("Could not print because the following document was not found: \t%1"), 1931,
                       QStringLiteral("Template not found."))
            .arg(QDir::toNativeSeparators(source));
    const Result<QString> folder = outputFolder();
    if (!folder)
        return folder.refusal();
    Result<QHash<QString, QString>> values = letterBookmarks(m_db, m_rates, kind, bookingId, roomId);
    if (!values)
        return values.refusal();
    Result<DocxTemplate> document = DocxTemplate::open(source);
    if (!document)
        return document.refusal();
    if (Outcome filled = document->fillBookmarks(*values); !filled)
        return filled.refusal();
    const QString number = QStringLiteral("%1").arg(bookingId, 6, 10, QLatin1Char('0'));
    const QString name = kind == LetterKind::Confirmation ? QStringLiteral("Confirmation%1.docx").arg(number)
                                                          : QStringLiteral("Registration%1-%2.docx").arg(number).arg(roomId);
    const QString target = *folder + name;
    if (Outcome saved = document->save(target); !saved)
        return saved.refusal();
    PrintedLetter letter{target, QString()};
    if (kind == LetterKind::Confirmation)
        letter.email = m_db.scalar(QStringLiteral("select email from client join booking on booking.madeby = client.bbclientid "
                                                  "where booking.bbbookingid = ?"),
                                   {bookingId})
                           .toString()
                           .trimmed();
    return letter;
}

Result<QString> PrintBooking::printSummary(qint32 bookingId)
{
    Result<QString> text = bookingSummaryText(m_db, bookingId);
    if (!text)
        return text;
    const QString target = (m_folder.isEmpty() ? config::templateDir() : QDir(m_folder).absolutePath() + QLatin1Char('/'))
        + QStringLiteral("VMWordPad.txt");
    if (Outcome open = checkNotOpen(target); !open)
        return open.refusal();
    QSaveFile file(target);
    const QByteArray bytes = text->toUtf8();
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        return couldNotCreate(target);
    return target;
}

} // namespace fenlark
