#include "ctl/options.h"
#include "ctl/verb.h"

#include "bookings/bookingcodes.h"
#include "bookings/bookingdetails.h"
#include "clients/clientsearch.h"
#include "shell/money.h"

#include <QJsonArray>
#include <QJsonObject>

#include <cstdio>

namespace fenlark::ctl {

namespace {

QJsonValue dateText(const QDate &date)
{
    return date.isValid() ? QJsonValue(date.toString(QStringLiteral("yyyy-MM-dd"))) : QJsonValue();
}

QJsonValue dateTimeText(const QDateTime &dateTime)
{
    return dateTime.isValid() ? QJsonValue(dateTime.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"))) : QJsonValue();
}

int runClients(const CommandLine &args)
{
    auto db = openDatabase(args);
    if (!db)
        return 1;
    ClientSearchCriteria criteria;
    criteria.firstName = args.option(QStringLiteral("first"));
    criteria.surname = args.option(QStringLiteral("surname"));
    criteria.company = args.option(QStringLiteral("company"));
    criteria.clientId = args.option(QStringLiteral("id"));
    QJsonArray rows;
    for (const ClientSearchRow &row : searchClients(*db, criteria))
        rows.append(QJsonObject{{"id", row.BBClientID}, {"name", row.text()}, {"shortName", row.shortName()}});
    printJson(rows);
    return 0;
}

QJsonObject headJson(const Booking &b)
{
    return QJsonObject{{"BBBookingID", b.BBBookingID},
                       {"BookingID", b.BookingID},
                       {"BookingType", b.BookingType},
                       {"bookingTypeName", bookingTypeName(b.BookingType)},
                       {"BookingDate", dateTimeText(b.BookingDate)},
                       {"FromDate", dateText(b.FromDate)},
                       {"ToDate", dateText(b.ToDate)},
                       {"nights", b.nights()},
                       {"Status", b.Status},
                       {"statusName", bookingStatusName(b.Status)},
                       {"MadeBy", b.MadeBy},
                       {"Deposit", b.Deposit},
                       {"BBRateSheetID", b.BBRateSheetID},
                       {"BBAccountID", b.BBAccountID},
                       {"AgentComm", b.AgentComm},
                       {"ExtBookingID", b.ExtBookingID.isNull() ? QJsonValue() : QJsonValue(b.ExtBookingID)},
                       {"Source", b.Source},
                       {"Notes", b.Notes},
                       {"ReservedUntil", dateTimeText(b.ReservedUntil)},
                       {"CurrencyCode", b.CurrencyCode},
                       {"ExchangeRate", b.ExchangeRate}};
}

QJsonObject legJson(const LegDetails &details)
{
    const Guest &g = details.leg;
    QJsonArray nights;
    for (const DailyRate &night : details.nights)
        nights.append(QJsonObject{{"CalDate", dateText(night.CalDate)}, {"RoomRate", night.RoomRate}});
    return QJsonObject{{"BBGuestID", g.BBGuestID},   {"GuestID", g.GuestID},         {"BBRoomID", g.BBRoomID},
                       {"BBClientID", g.BBClientID}, {"NoAdults", g.NoAdults},       {"Child1", g.Child1},
                       {"Child2", g.Child2},         {"BBRateID", g.BBRateID},       {"BBClient2ID", g.BBClient2ID},
                       {"BBAccountID", g.BBAccountID}, {"Reference", g.Reference},   {"CheckInOut", g.CheckInOut},
                       {"nights", nights}};
}

int runBooking(const CommandLine &args)
{
    const QStringList words = args.positional();
    if (!words.isEmpty() && words.at(0) != QLatin1String("show"))
        return runBookingChange(args);
    if (words.size() != 2)
        return fail(QStringLiteral("usage: booking show [--db PATH] KEY"));
    const auto key = keyWord(words.at(1), QStringLiteral("booking key"));
    if (!key)
        return 1;
    auto db = openDatabase(args);
    if (!db)
        return 1;
    const std::optional<BookingDetails> details = loadBookingDetails(*db, *key);
    if (!details)
        return fail(QStringLiteral("no booking %1").arg(*key));
    QJsonObject out{{"booking", headJson(details->head)}};
    QJsonArray legs;
    for (const LegDetails &leg : details->legs)
        legs.append(legJson(leg));
    out.insert(QStringLiteral("legs"), legs);
    if (details->madeBy)
        out.insert(QStringLiteral("client"), QJsonObject{{"BBClientID", details->madeBy->BBClientID},
                                                         {"name", details->madeBy->FullName()}});
    else
        out.insert(QStringLiteral("client"), QJsonValue());
    if (details->account) {
        const Account &a = *details->account;
        out.insert(QStringLiteral("account"), QJsonObject{{"BBAccountID", a.BBAccountID},
                                                          {"InvoiceTo", a.InvoiceTo},
                                                          {"ProformaNo", a.ProformaNo},
                                                          {"InvoiceNo", a.InvoiceNo},
                                                          {"AccountID", a.AccountID},
                                                          {"Status", a.Status},
                                                          {"Reference", a.Reference},
                                                          {"VatCode", a.VatCode},
                                                          {"balance", roundMoney(details->balance)}});
    } else {
        out.insert(QStringLiteral("account"), QJsonValue());
    }
    out.insert(QStringLiteral("problems"), QJsonArray::fromStringList(details->problems));
    for (const QString &problem : details->problems)
        std::fprintf(stderr, "%s\n", qUtf8Printable(problem));
    printJson(out);
    return 0;
}

} // namespace

const std::vector<Verb> &recordsVerbs()
{
    static const std::vector<Verb> verbs = {
        {"clients", "clients [--db PATH] [--first X] [--surname X] [--company X] [--id N]   the client search as JSON rows",
         runClients},
        {"booking", "booking show [--db PATH] KEY          a booking: head, legs, nights with rates, account\n"
                    "  booking dates [--db PATH] KEY --from DATE --to DATE [--reprice]   move the stay\n"
                    "  booking room [--db PATH] KEY --leg ROOM --to-room ROOM   move one leg to another room\n"
                    "  booking split [--db PATH] KEY --leg ROOM   split one leg off into its own booking\n"
                    "  booking add-room [--db PATH] KEY --room R [--rate ID] [--adults A] [--child1 N] [--child2 N] "
                    "[--client ID] [--yes]   add a room to the booking\n"
                    "  booking free-rooms [--db PATH] KEY --leg ROOM [--from DATE --to DATE]   the rooms that leg may move to\n"
                    "  booking cancel [--db PATH] KEY --reason TEXT   cancel the whole booking\n"
                    "  booking cancel-room [--db PATH] KEY --leg ROOM --reason TEXT   cancel one room of it\n"
                    "  booking checkin [--db PATH] KEY --leg ROOM [--out|--clear]   mark the room checked in or out\n"
                    "  booking rates [--db PATH] KEY [--sheet ID] [--refresh] [--set ROOM:DATE=AMOUNT ...]   "
                    "the nightly rates, changed and saved as the rates view does",
         runBooking},
    };
    return verbs;
}

} // namespace fenlark::ctl
