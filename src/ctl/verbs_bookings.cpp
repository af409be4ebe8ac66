#include "ctl/options.h"
#include "ctl/verb.h"

#include "bookings/bookingsave.h"
#include "bookings/checkinout.h"
#include "bookings/doublebookings.h"
#include "bookings/newbooking.h"
#include "bookings/provisional.h"
#include "rates/ratedata.h"
#include "rates/roomrates.h"
#include "bookings/bookingrecords.h"
#include "shell/money.h"
#include "shell/preferences.h"
#include "shell/security.h"
#include "shell/setuprecords.h"

#include <QJsonArray>
#include <QJsonObject>

#include <array>

namespace fenlark::ctl {

namespace {

// ROOM[:RATE[:ADULTS[:CHILD1[:CHILD2]]]]; a missing or empty rate is the room's
// default offered rate, a missing or empty head count the desk's default.
std::optional<NewBookingRoom> parseRoom(const QString &text, const RateData &rates, const QDate &from,
                                        const QDate &to, qint16 adults)
{
    const QStringList parts = text.split(QLatin1Char(':'));
    if (parts.size() > 5)
        return std::nullopt;
    std::array<int, 5> values{0, -1, adults, 0, 0};
    for (qsizetype i = 0; i < parts.size(); ++i) {
        if (i > 0 && parts.at(i).isEmpty())
            continue;
        bool ok = false;
        values[i] = parts.at(i).toInt(&ok);
        if (!ok || values[i] < 0 || (i >= 2 && values[i] > 999))
            return std::nullopt;
    }
    if (values[0] < 1)
        return std::nullopt;
    NewBookingRoom room;
    room.BBRoomID = values[0];
    if (values[1] < 0) {
        const std::vector<qint32> offered = getRoomRates(rates, from, to, room.BBRoomID);
        room.BBRateID = offered.empty() ? 0 : offered.front();
    } else {
        room.BBRateID = values[1];
    }
    room.NoAdults = static_cast<qint16>(values[2]);
    room.Child1 = static_cast<qint16>(values[3]);
    room.Child2 = static_cast<qint16>(values[4]);
    return room;
}

// The answers a script gives: dates move for every leg, linked bookings follow,
// the rates are not opened (re-pricing is asked for with --reprice), a room of
// another type is priced at its rates. Limits (heads over a room's, a stay in
// the past) are accepted only with --yes.
class ScriptAnswers : public SaveQuestions {
public:
    explicit ScriptAnswers(bool acceptWarnings) : m_accept(acceptWarnings) {}
    bool acceptOverLimit(const QString &, int, int, int, int) override { return m_accept; }
    bool acceptPastStart(const QDate &) override { return m_accept; }
    bool changeAllLegs() override { return true; }
    bool changeLinkedBookings() override { return true; }
    bool checkRates() override { return false; }
    bool repriceAtNewRoom(const QString &) override { return true; }

private:
    bool m_accept;
};

int runBook(const CommandLine &args)
{
    const auto stay = fromToOptions(args);
    if (!stay)
        return 1;
    auto db = openDatabase(args);
    if (!db)
        return 1;
    const RateData rates = RateData::load(*db);
    const qint16 adults = defaultAdults(getPreference(*db, QStringLiteral("DEFUSER")));

    NewBookingRequest request;
    request.FromDate = stay->from;
    request.ToDate = stay->to;
    for (const QString &text : args.options(QStringLiteral("room"))) {
        const auto room = parseRoom(text, rates, stay->from, stay->to, adults);
        if (!room)
            return fail(QStringLiteral("--room must be ROOM[:RATE[:ADULTS[:CHILD1[:CHILD2]]]] in whole numbers: %1").arg(text));
        request.rooms.push_back(*room);
    }
    if (args.has(QStringLiteral("client"))) {
        const auto client = keyOption(args, QStringLiteral("client"), QStringLiteral("a client key"));
        if (!client)
            return 1;
        request.BBClientID = *client;
    } else {
        request.firstName = args.option(QStringLiteral("first"));
        request.surname = args.option(QStringLiteral("surname"));
        request.company = args.option(QStringLiteral("company"));
    }

    BBSetup setup;
    setup.fetch(*db);
    const UserStruct user = UserStruct::autoAdmin();
    ScriptAnswers answers(args.has(QStringLiteral("yes")));
    const auto result = BookingWriter(*db, rates, setup, user).save(request, answers);
    if (!result)
        return refuse(result.refusal());
    QJsonArray legs;
    for (const NewBookingLeg &leg : result->legs)
        legs.append(QJsonObject{{QStringLiteral("room"), leg.BBRoomID}, {QStringLiteral("guest"), leg.BBGuestID}});
    printJson(QJsonObject{{"booking", result->BBBookingID},
                          {"legs", legs},
                          {"account", result->BBAccountID},
                          {"total", roundMoney(result->total)}});
    return 0;
}

QJsonObject stayJson(Database &db, qint32 bookingId)
{
    const auto edit = loadBookingEdit(db, bookingId, Guest::legsOf(db, bookingId).front().BBRoomID);
    const double total =
        db.scalar(QStringLiteral("select sum(roomrate) from dailyrate where bbbookingid = ?"), {bookingId}).toDouble();
    return QJsonObject{{"booking", bookingId},
                       {"from", edit->fromDate.toString(Qt::ISODate)},
                       {"to", edit->toDate.toString(Qt::ISODate)},
                       {"total", roundMoney(total)}};
}

} // namespace

int runBookingChange(const CommandLine &args)
{
    const QStringList words = args.positional();
    if (!words.isEmpty() && isBookingMaintenance(words.at(0)))
        return runBookingMaintenance(args);
    bool ok = false;
    const qint32 key = words.size() == 2 ? words.at(1).toInt(&ok) : 0;
    if (!ok || key < 1)
        return fail(QStringLiteral("usage: booking dates|room|split [--db PATH] KEY ..."));
    auto db = openDatabase(args);
    if (!db)
        return 1;
    const std::vector<Guest> legs = Guest::legsOf(*db, key);
    if (legs.empty())
        return fail(QStringLiteral("no booking %1").arg(key));

    const RateData rates = RateData::load(*db);
    const UserStruct user = UserStruct::autoAdmin();
    BBSetup setup;
    setup.fetch(*db);
    ScriptAnswers answers(args.has(QStringLiteral("yes")));
    BookingSave saver(*db, rates, setup, user, answers);
    const QString what = words.at(0);

    if (what == QLatin1String("split")) {
        const auto room = keyOption(args, QStringLiteral("leg"), QStringLiteral("a room key"));
        if (!room)
            return 1;
        const auto split = saver.split(key, *room);
        if (!split)
            return refuse(split.refusal());
        printJson(QJsonObject{{QStringLiteral("booking"), split->newBookingId},
                              {QStringLiteral("from"), key},
                              {QStringLiteral("deposit"), split->newDeposit},
                              {QStringLiteral("fromDeposit"), split->oldDeposit}});
        return 0;
    }

    qint32 legRoom = legs.front().BBRoomID;
    if (what == QLatin1String("room")) {
        const auto room = keyOption(args, QStringLiteral("leg"), QStringLiteral("a room key"));
        if (!room)
            return 1;
        legRoom = *room;
    }
    auto edit = loadBookingEdit(*db, key, legRoom);
    if (!edit)
        return fail(QStringLiteral("booking %1 has no leg in room %2").arg(key).arg(legRoom));

    if (what == QLatin1String("dates")) {
        const auto stay = fromToOptions(args);
        if (!stay)
            return 1;
        edit->fromDate = stay->from;
        edit->toDate = stay->to;
        edit->repriceAll = args.has(QStringLiteral("reprice"));
    } else if (what == QLatin1String("room")) {
        const auto toRoom = keyOption(args, QStringLiteral("to-room"), QStringLiteral("a room key"));
        if (!toRoom)
            return 1;
        edit->roomId = *toRoom;
    } else {
        return fail(QStringLiteral("usage: booking dates|room|split [--db PATH] KEY ..."));
    }
    if (const auto saved = saver.save(*edit); !saved)
        return refuse(saved.refusal());
    printJson(stayJson(*db, key));
    return 0;
}

// The rooms sold twice, as the desk's list shows them; exit 3 when there are any.
int runDoubleBookings(const CommandLine &args)
{
    auto db = openDatabase(args);
    if (!db)
        return 1;
    DoubleBookingScan scan(*db);
    const bool found = scan.scan();
    QJsonArray clashes;
    for (const DoubleBookingRow &row : scan.clashes())
        clashes.append(QJsonObject{{"booking", row.BBBookingID},
                                   {"room", row.BBRoomID},
                                   {"type", row.type},
                                   {"name", row.name},
                                   {"from", row.fromDate.toString(Qt::ISODate)},
                                   {"to", row.toDate.toString(Qt::ISODate)}});
    printJson(QJsonObject{{"clashes", clashes}});
    return found ? 3 : 0;
}

// Today's (or a given day's) arrivals, or with --departures its departures.
int runArrivals(const CommandLine &args)
{
    const auto day = dateOption(args, QStringLiteral("date"), QDate::currentDate());
    if (!day)
        return 1;
    auto db = openDatabase(args);
    if (!db)
        return 1;
    const StayEnd end = args.has(QStringLiteral("departures")) ? StayEnd::Departures : StayEnd::Arrivals;
    QJsonArray legs;
    for (const DayLeg &leg : legsOfTheDay(*db, end, *day))
        legs.append(QJsonObject{{"booking", leg.BBBookingID}, {"room", leg.BBRoomID}, {"roomName", leg.roomName}, {"client", leg.client}});
    printJson(QJsonObject{{"date", day->toString(Qt::ISODate)}, {"legs", legs}});
    return 0;
}

// The provisional bookings whose hold has run out, as the desk's reminder names
// them; with --postpone KEY that booking's hold goes four hours on.
int runReminders(const CommandLine &args)
{
    auto db = openDatabase(args);
    if (!db)
        return 1;
    ProvisionalReminders reminders;
    if (args.has(QStringLiteral("postpone"))) {
        const auto key = keyOption(args, QStringLiteral("postpone"), QStringLiteral("a booking key"));
        if (!key)
            return 1;
        const QDateTime now = QDateTime::currentDateTime();
        if (reminders.postpone(*db, *key, now).isEmpty())
            return fail(QStringLiteral("Booking %1 is not a provisional booking.").arg(*key));
        printJson(QJsonObject{{"booking", *key}, {"reservedUntil", now.addSecs(4 * 3600).toString(Qt::ISODate)}});
        return 0;
    }
    QJsonArray due;
    for (const ProvisionalReminder &reminder : reminders.due(*db))
        due.append(QJsonObject{{"booking", reminder.BBBookingID},
                               {"room", reminder.firstRoomId},
                               {"guest", reminder.guest},
                               {"arrival", reminder.arrival.toString(Qt::ISODate)},
                               {"text", reminder.text()}});
    printJson(QJsonObject{{"reminders", due}});
    return 0;
}

const std::vector<Verb> &bookingVerbs()
{
    static const std::vector<Verb> verbs = {
        {"book",
         "book [--db PATH] --from YYYY-MM-DD --to YYYY-MM-DD --room ROOM[:RATE[:ADULTS[:CHILD1[:CHILD2]]]]... "
         "(--client ID | --surname X [--first X] [--company X]) [--yes]   a new booking as the desk makes it "
         "(--yes books over a room's limits or in the past)",
         runBook},
        {"double-bookings", "double-bookings [--db PATH]   rooms sold twice for a night (exit 3 when there are any)",
         runDoubleBookings},
        {"arrivals", "arrivals [--db PATH] [--date YYYY-MM-DD] [--departures]   the legs arriving (or leaving) that day",
         runArrivals},
        {"reminders", "reminders [--db PATH] [--postpone KEY]   provisional bookings past their hold; --postpone puts "
                      "one's hold four hours on",
         runReminders},
    };
    return verbs;
}

} // namespace fenlark::ctl
