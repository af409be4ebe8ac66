#include "ctl/options.h"
#include "ctl/verb.h"

#include "bookings/bookingrates.h"
#include "bookings/bookingrecords.h"
#include "bookings/bookingsearch.h"
#include "bookings/cancellation.h"
#include "bookings/checkinout.h"
#include "bookings/newbooking.h"
#include "bookings/occupancy.h"
#include "bookings/quickquote.h"
#include "bookings/roommoves.h"
#include "rates/ratedata.h"
#include "rates/ratelists.h"
#include "rates/ratescalculator.h"
#include "rates/roomrates.h"
#include "shell/calendar.h"
#include "shell/preferences.h"
#include "shell/security.h"
#include "shell/setuprecords.h"

#include <QJsonArray>
#include <QJsonObject>

#include <cstdio>

namespace fenlark::ctl {

namespace {

QJsonValue day(const QDate &date)
{
    return date.isValid() ? QJsonValue(date.toString(Qt::ISODate)) : QJsonValue();
}

std::optional<qint16> countOption(const CommandLine &args, const QString &name, int defaultValue)
{
    bool ok = false;
    const int value = args.number(name, &ok, defaultValue);
    if (!ok || value < 0 || value > 999) {
        fail(QStringLiteral("--%1 must be a number of people from 0 to 999").arg(name));
        return std::nullopt;
    }
    return static_cast<qint16>(value);
}

// A script's answers: limits are passed only with --yes, cancellations are meant,
// and the reason is the one given with --reason.
class ScriptAnswers : public StayQuestions, public CancelQuestions {
public:
    explicit ScriptAnswers(const CommandLine &args)
        : m_accept(args.has(QStringLiteral("yes"))), m_reason(args.option(QStringLiteral("reason")))
    {
    }
    bool acceptOverLimit(const QString &, int, int, int, int) override { return m_accept; }
    bool acceptPastStart(const QDate &) override { return m_accept; }
    bool cancelBooking(bool) override { return true; }
    bool cancelRoom() override { return true; }
    std::optional<QString> reason() override { return m_reason; }

private:
    bool m_accept;
    QString m_reason;
};

QJsonArray roomsJson(const std::vector<qint32> &ids, const RateData &rates)
{
    QJsonArray rooms;
    for (qint32 id : ids) {
        const Room *room = rates.room(id);
        rooms.append(QJsonObject{{"room", id}, {"name", room ? room->RoomName : QString::number(id)}});
    }
    return rooms;
}

// booking add-room KEY --room R [--rate ID] [--adults A] [--child1 N] [--child2 N] [--client ID] [--yes]
int runAddRoom(Database &db, qint32 booking, const CommandLine &args)
{
    const auto room = keyWord(args.option(QStringLiteral("room")), QStringLiteral("--room"));
    if (!room)
        return 1;
    const RateData rates = RateData::load(db);
    AddRoomRequest request;
    request.BBBookingID = booking;
    request.BBRoomID = *room;
    if (args.has(QStringLiteral("rate"))) {
        bool ok = false;
        request.BBRateID = args.number(QStringLiteral("rate"), &ok);
        if (!ok || request.BBRateID < 0)
            return fail(QStringLiteral("--rate must be a rate code id (0 for manual rates)"));
    } else {
        Booking head;
        if (head.fetch(db, booking)) {
            const std::vector<qint32> offered = getRoomRates(rates, head.FromDate, head.ToDate, *room);
            request.BBRateID = offered.empty() ? 0 : offered.front();
        }
    }
    if (args.has(QStringLiteral("client"))) {
        const auto client = keyWord(args.option(QStringLiteral("client")), QStringLiteral("--client"));
        if (!client)
            return 1;
        request.BBClientID = *client;
    }
    const auto adults = countOption(args, QStringLiteral("adults"), defaultAdults(getPreference(db, QStringLiteral("DEFUSER"))));
    const auto child1 = countOption(args, QStringLiteral("child1"), 0);
    const auto child2 = countOption(args, QStringLiteral("child2"), 0);
    if (!adults || !child1 || !child2)
        return 1;
    request.adults = *adults;
    request.child1 = *child1;
    request.child2 = *child2;
    const UserStruct user = UserStruct::autoAdmin();
    ScriptAnswers answers(args);
    const auto added = RoomAdder(db, rates, user).add(request, answers);
    if (!added)
        return refuse(added.refusal());
    printJson(QJsonObject{{"booking", booking},
                          {"room", *room},
                          {"guest", added->BBGuestID},
                          {"adults", added->adults},
                          {"total", added->total}});
    return 0;
}

// booking free-rooms KEY --leg R [--from D --to D]: the rooms that leg may change to.
int runFreeRooms(Database &db, qint32 booking, const CommandLine &args)
{
    const auto leg = keyWord(args.option(QStringLiteral("leg")), QStringLiteral("--leg"));
    if (!leg)
        return 1;
    Booking head;
    if (!head.fetch(db, booking))
        return fail(QStringLiteral("no booking %1").arg(booking));
    QDate from = head.FromDate, to = head.ToDate;
    if (args.has(QStringLiteral("from")) || args.has(QStringLiteral("to"))) {
        const auto given = fromToOptions(args);
        if (!given)
            return 1;
        if (given->to <= given->from)
            return fail(QStringLiteral("--to must be after --from (it is the day of leaving)"));
        from = given->from;
        to = given->to;
    }
    const RateData rates = RateData::load(db);
    Calendar calendar;
    const auto offered = roomsForChange(db, calendar, getRooms(db), booking, *leg, from, to);
    if (!offered)
        return refuse(offered.refusal());
    printJson(QJsonObject{{"booking", booking}, {"leg", *leg}, {"from", day(from)}, {"to", day(to)}, {"rooms", roomsJson(*offered, rates)}});
    return 0;
}

// booking cancel KEY --reason R, booking cancel-room KEY --leg R --reason R
int runCancel(Database &db, qint32 booking, const CommandLine &args, bool oneRoom)
{
    const UserStruct user = UserStruct::autoAdmin();
    ScriptAnswers answers(args);
    BookingCancel cancel(db, user);
    qint32 room = 0;
    if (oneRoom) {
        const auto leg = keyWord(args.option(QStringLiteral("leg")), QStringLiteral("--leg"));
        if (!leg)
            return 1;
        room = *leg;
    }
    const Result<CancelOutcome> outcome = oneRoom ? cancel.cancelRoom(booking, room, answers) : cancel.cancelBooking(booking, answers);
    if (!outcome)
        return refuse(outcome.refusal());
    QJsonObject out{{"booking", booking}, {"cancelled", outcome->cancelled}};
    if (oneRoom)
        out.insert(QStringLiteral("room"), room);
    printJson(out);
    return 0;
}

// booking checkin KEY --leg R [--out|--clear]
int runCheckIn(Database &db, qint32 booking, const CommandLine &args)
{
    const auto leg = keyWord(args.option(QStringLiteral("leg")), QStringLiteral("--leg"));
    if (!leg)
        return 1;
    if (args.has(QStringLiteral("out")) && args.has(QStringLiteral("clear")))
        return fail(QStringLiteral("--out and --clear exclude each other"));
    const CheckState state = args.has(QStringLiteral("clear")) ? CheckState::None
                             : args.has(QStringLiteral("out")) ? CheckState::CheckedOut
                                                               : CheckState::CheckedIn;
    const auto marked = setCheckInOut(db, booking, *leg, state);
    if (!marked)
        return refuse(marked.refusal());
    printJson(QJsonObject{{"booking", booking}, {"room", *leg}, {"checkInOut", checkInOutCode(state)}});
    return 0;
}

QJsonObject ratesJson(const BookingRates &view)
{
    const QList<QDate> nights = view.nights();
    QJsonArray legs;
    for (const RatesLeg &leg : view.legs()) {
        QJsonArray rates;
        for (int n = 0; n < nights.size(); ++n)
            rates.append(QJsonObject{{"date", day(nights.at(n))}, {"rate", leg.rates[static_cast<size_t>(n)]}});
        legs.append(QJsonObject{{"room", leg.BBRoomID}, {"name", leg.roomName}, {"rate", leg.BBRateID}, {"nights", rates}});
    }
    return QJsonObject{{"booking", view.bookingId()}, {"sheet", view.rateSheet()}, {"total", view.total()}, {"legs", legs}};
}

// booking rates KEY [--sheet ID] [--refresh] [--set ROOM:DATE=AMOUNT ...]: shown as
// they stand, or changed and saved as the rates view saves them.
int runRates(Database &db, qint32 booking, const CommandLine &args)
{
    auto view = BookingRates::load(db, booking);
    if (!view)
        return fail(QStringLiteral("no booking %1").arg(booking));
    const RateData rates = RateData::load(db);
    bool changed = false;
    if (args.has(QStringLiteral("sheet"))) {
        bool ok = false;
        const int sheet = args.number(QStringLiteral("sheet"), &ok);
        if (!ok || sheet < 0)
            return fail(QStringLiteral("--sheet must be a rate sheet id"));
        RateSheet known;
        if (sheet != 0 && !known.fetch(db, sheet))
            return fail(QStringLiteral("rate sheet %1 not found").arg(sheet));
        view->setRateSheet(sheet);
        changed = true;
    }
    if (args.has(QStringLiteral("refresh"))) {
        view->recalculate(rates);
        changed = true;
    }
    const QList<QDate> nights = view->nights();
    for (const QString &set : args.options(QStringLiteral("set"))) {
        const QString target = set.section(QLatin1Char('='), 0, 0);
        const QString amount = set.section(QLatin1Char('='), 1);
        bool ok = false;
        const qint32 room = target.section(QLatin1Char(':'), 0, 0).toInt(&ok);
        const QDate date = QDate::fromString(target.section(QLatin1Char(':'), 1), Qt::ISODate);
        int leg = -1;
        for (size_t i = 0; ok && i < view->legs().size(); ++i)
            if (view->legs()[i].BBRoomID == room)
                leg = static_cast<int>(i);
        if (!set.contains(QLatin1Char('=')) || leg < 0 || !nights.contains(date))
            return fail(QStringLiteral("--set must be ROOM:DATE=AMOUNT for a room and a night of the booking: %1").arg(set));
        const Result<double> rate = parseRate(amount);
        if (!rate)
            return refuse(rate.refusal());
        view->setRate(leg, static_cast<int>(nights.indexOf(date)), *rate);
        changed = true;
    }
    if (changed) {
        BBSetup setup;
        setup.fetch(db);
        const UserStruct user = UserStruct::autoAdmin();
        if (const auto saved = view->save(db, setup, user); !saved)
            return refuse(saved.refusal());
        view = BookingRates::load(db, booking);
    }
    printJson(ratesJson(*view));
    return 0;
}

// staying --date D: the legs staying that night, as the room swap lists them.
int runStaying(const CommandLine &args)
{
    const auto date = dateOption(args, QStringLiteral("date"));
    if (!date)
        return 1;
    auto db = openDatabase(args);
    if (!db)
        return 1;
    QJsonArray legs;
    for (const StayingLeg &leg : legsStaying(*db, *date))
        legs.append(QJsonObject{{"guest", leg.BBGuestID},
                                {"booking", leg.BBBookingID},
                                {"room", leg.BBRoomID},
                                {"roomName", leg.roomName},
                                {"client", leg.client},
                                {"from", day(leg.fromDate)},
                                {"to", day(leg.toDate)}});
    printJson(QJsonObject{{"date", day(*date)}, {"legs", legs}});
    return 0;
}

// swap GUEST_A GUEST_B: two legs exchange their rooms.
int runSwap(const CommandLine &args)
{
    const QStringList words = args.positional();
    if (words.size() != 2)
        return fail(QStringLiteral("usage: swap [--db PATH] GUEST_A GUEST_B"));
    const auto first = keyWord(words.at(0), QStringLiteral("GUEST_A"));
    const auto second = first ? keyWord(words.at(1), QStringLiteral("GUEST_B")) : std::nullopt;
    if (!first || !second)
        return 1;
    auto db = openDatabase(args);
    if (!db)
        return 1;
    const UserStruct user = UserStruct::autoAdmin();
    const auto swapped = RoomSwap(*db, user).swap(*first, *second);
    if (!swapped)
        return refuse(swapped.refusal());
    QJsonArray legs;
    for (qint32 guest : {*first, *second}) {
        Guest leg;
        leg.fetch(*db, guest);
        legs.append(QJsonObject{{"guest", guest}, {"booking", leg.BBBookingID}, {"room", leg.BBRoomID}});
    }
    printJson(QJsonObject{{"legs", legs}});
    return 0;
}

// cancellations [--surname X]: the cancelled rooms, newest first, at most 2000.
int runCancellations(const CommandLine &args)
{
    auto db = openDatabase(args);
    if (!db)
        return 1;
    QJsonArray legs;
    for (const CancelledLeg &leg : cancelledLegs(*db, args.option(QStringLiteral("surname"))))
        legs.append(QJsonObject{{"guest", leg.BBGuestID},
                                {"booking", leg.BBBookingID},
                                {"room", leg.BBRoomID},
                                {"roomName", leg.roomName},
                                {"from", day(leg.fromDate)},
                                {"to", day(leg.toDate)},
                                {"client", leg.client.isEmpty() ? QJsonValue() : QJsonValue(leg.client)},
                                {"deleted", leg.deleted.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"))},
                                {"user", leg.user}});
    printJson(QJsonObject{{"legs", legs}});
    return 0;
}

// restore GUEST: a cancelled room comes back; exit 3 when that sold its room twice.
int runRestore(const CommandLine &args)
{
    if (!args.option(QStringLiteral("from")).isEmpty())
        return runDatabaseRestore(args);
    const QStringList words = args.positional();
    if (words.size() != 1)
        return fail(QStringLiteral("usage: restore [--db PATH] GUEST"));
    const auto guest = keyWord(words.at(0), QStringLiteral("GUEST"));
    if (!guest)
        return 1;
    auto db = openDatabase(args);
    if (!db)
        return 1;
    const RateData rates = RateData::load(*db);
    const UserStruct user = UserStruct::autoAdmin();
    const auto restored = restoreLeg(*db, rates, user, *guest);
    if (!restored)
        return refuse(restored.refusal());
    printJson(QJsonObject{{"guest", *guest},
                          {"booking", restored->BBBookingID},
                          {"room", restored->BBRoomID},
                          {"headRestored", restored->headRestored},
                          {"stillCancelled", QJsonArray::fromStringList(restored->stillCancelled)},
                          {"doubleBooked", restored->doubleBooked}});
    if (restored->doubleBooked)
        std::fprintf(stderr, "fenlarkctl: the restored room is sold twice; see double-bookings\n");
    return restored->doubleBooked ? 3 : 0;
}

// search [--invoice N|--proforma N|--id N|--server N|--reference X|--first X --surname X ...]
int runSearch(const CommandLine &args)
{
    BookingSearchCriteria criteria;
    criteria.invoiceNo = args.option(QStringLiteral("invoice"));
    criteria.proformaNo = args.option(QStringLiteral("proforma"));
    criteria.bookingId = args.option(QStringLiteral("id"));
    criteria.serverId = args.option(QStringLiteral("server"));
    criteria.reference = args.option(QStringLiteral("reference"));
    criteria.firstName = args.option(QStringLiteral("first"));
    criteria.surname = args.option(QStringLiteral("surname"));
    criteria.phone = args.option(QStringLiteral("phone"));
    criteria.email = args.option(QStringLiteral("email"));
    criteria.company = args.option(QStringLiteral("company"));
    criteria.status = args.option(QStringLiteral("status"));
    auto db = openDatabase(args);
    if (!db)
        return 1;
    const auto found = searchBookings(*db, criteria);
    if (!found)
        return refuse(found.refusal());
    QJsonArray rows;
    for (const BookingSearchRow &row : *found)
        rows.append(QJsonObject{{"booking", row.BBBookingID},
                                {"room", row.BBRoomID},
                                {"roomName", row.roomName},
                                {"madeBy", row.madeBy},
                                {"guest", row.guest},
                                {"arrival", day(row.arrival)}});
    printJson(QJsonObject{{"rows", rows}});
    return 0;
}

// occupancy --from D --to D [--rooms 1,2,...] [--beds]
int runOccupancy(const CommandLine &args)
{
    const auto span = fromToOptions(args);
    if (!span)
        return 1;
    auto db = openDatabase(args);
    if (!db)
        return 1;
    const RateData rates = RateData::load(*db);
    OccupancyRequest request{span->from, span->to, {}, args.has(QStringLiteral("beds")) ? OccupancyMode::Beds : OccupancyMode::Rooms};
    if (args.has(QStringLiteral("rooms"))) {
        for (const QString &text : args.option(QStringLiteral("rooms")).split(QLatin1Char(','), Qt::SkipEmptyParts)) {
            const auto room = keyWord(text.trimmed(), QStringLiteral("--rooms"));
            if (!room)
                return 1;
            request.rooms.push_back(*room);
        }
    } else {
        for (const Room &room : getRooms(*db))
            request.rooms.push_back(room.BBRoomID);
    }
    const auto figures = occupancy(*db, rates, request);
    if (!figures)
        return refuse(figures.refusal());
    QJsonArray nights;
    for (const NightOccupancy &night : figures->nights)
        nights.append(QJsonObject{{"date", day(night.date)}, {"available", night.available}, {"sold", night.sold}});
    printJson(QJsonObject{{"from", day(span->from)},
                          {"to", day(span->to)},
                          {"mode", request.mode == OccupancyMode::Beds ? QStringLiteral("beds") : QStringLiteral("rooms")},
                          {"available", figures->available},
                          {"sold", figures->sold},
                          {"percent", figures->percentText()},
                          {"nights", nights}});
    return 0;
}

// quick-quote --from D --to D [--adults A] [--child1 N] [--child2 N] [--sheet ID] [--text]
int runQuickQuote(const CommandLine &args)
{
    const auto span = fromToOptions(args);
    if (!span)
        return 1;
    auto db = openDatabase(args);
    if (!db)
        return 1;
    QuickQuoteRequest request;
    request.from = span->from;
    request.to = span->to;
    const auto adults = countOption(args, QStringLiteral("adults"), defaultAdults(getPreference(*db, QStringLiteral("DEFUSER"))));
    const auto child1 = countOption(args, QStringLiteral("child1"), 0);
    const auto child2 = countOption(args, QStringLiteral("child2"), 0);
    if (!adults || !child1 || !child2)
        return 1;
    request.adults = *adults;
    request.child1 = *child1;
    request.child2 = *child2;
    bool ok = false;
    request.BBRateSheetID = args.number(QStringLiteral("sheet"), &ok, 0);
    RateSheet sheet;
    if (!ok || request.BBRateSheetID < 0 || (request.BBRateSheetID != 0 && !sheet.fetch(*db, request.BBRateSheetID)))
        return fail(QStringLiteral("--sheet must be the id of a rate sheet"));
    const RateData rates = RateData::load(*db);
    Calendar calendar;
    const auto quote = quickQuote(*db, calendar, rates, getRooms(*db), request);
    if (!quote)
        return refuse(quote.refusal());
    if (args.has(QStringLiteral("text"))) {
        ChildPolicy policy;
        policy.fetchChildPolicy(*db);
        const QByteArray text = quote->copyText(policy).toUtf8();
        std::fwrite(text.constData(), 1, static_cast<size_t>(text.size()), stdout);
        return 0;
    }
    QJsonArray types;
    for (const QuotedRoomType &type : quote->types) {
        QJsonArray prices;
        for (const QuotedRate &rate : type.rates)
            prices.append(QJsonObject{{"rate", rate.BBRateID}, {"name", rate.name}, {"total", rate.total}, {"perNight", rate.perNight}});
        types.append(QJsonObject{{"type", type.BBRTID},
                                 {"name", type.name},
                                 {"rooms", QJsonArray::fromStringList(type.rooms)},
                                 {"rates", prices}});
    }
    printJson(QJsonObject{{"from", day(span->from)},
                          {"to", day(span->to)},
                          {"nights", quote->nights()},
                          {"currency", quote->currency},
                          {"types", types}});
    return 0;
}

} // namespace

bool isBookingMaintenance(const QString &word)
{
    static const QStringList words = {QStringLiteral("add-room"), QStringLiteral("free-rooms"), QStringLiteral("cancel"),
                                      QStringLiteral("cancel-room"), QStringLiteral("checkin"), QStringLiteral("rates")};
    return words.contains(word);
}

int runBookingMaintenance(const CommandLine &args)
{
    const QStringList words = args.positional();
    if (words.size() != 2)
        return fail(QStringLiteral("usage: booking %1 [--db PATH] KEY ...").arg(words.value(0)));
    const auto booking = keyWord(words.at(1), QStringLiteral("booking key"));
    if (!booking)
        return 1;
    auto db = openDatabase(args);
    if (!db)
        return 1;
    const QString what = words.at(0);
    if (what == QLatin1String("add-room"))
        return runAddRoom(*db, *booking, args);
    if (what == QLatin1String("free-rooms"))
        return runFreeRooms(*db, *booking, args);
    if (what == QLatin1String("cancel") || what == QLatin1String("cancel-room"))
        return runCancel(*db, *booking, args, what == QLatin1String("cancel-room"));
    if (what == QLatin1String("checkin"))
        return runCheckIn(*db, *booking, args);
    return runRates(*db, *booking, args);
}

const std::vector<Verb> &maintenanceVerbs()
{
    static const std::vector<Verb> verbs = {
        {"staying", "staying [--db PATH] --date YYYY-MM-DD   the rooms staying that night (the room swap's list)", runStaying},
        {"swap", "swap [--db PATH] GUEST_A GUEST_B   two rooms exchange their guests, with their nightly rates", runSwap},
        {"cancellations", "cancellations [--db PATH] [--surname X]   the cancelled rooms, newest first (at most 2000)",
         runCancellations},
        {"restore", "restore [--db PATH] GUEST | --from BACKUP   a cancelled room comes back (exit 3 when it is now sold twice); "
                    "with --from, the backup replaces the database, the old file kept aside", runRestore},
        {"search",
         "search [--db PATH] [--invoice N|--proforma N|--id N|--server N|--reference X|--first X --surname X --phone X "
         "--email X --company X --status C]   bookings found as the desk's search finds them",
         runSearch},
        {"occupancy", "occupancy [--db PATH] --from DATE --to DATE [--rooms 1,2,...] [--beds]   how full the rooms were",
         runOccupancy},
        {"quick-quote",
         "quick-quote [--db PATH] --from DATE --to DATE [--adults A] [--child1 N] [--child2 N] [--sheet ID] [--text]   "
         "free room types and the price of each rate",
         runQuickQuote},
    };
    return verbs;
}

} // namespace fenlark::ctl
