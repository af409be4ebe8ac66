#include "desk/propertygenerator.h"

#include "accounts/accountrecords.h"
#include "bookings/bookingrecords.h"
#include "clients/clientrecords.h"
#include "rates/ratedata.h"
#include "rates/raterecords.h"
#include "rates/ratescalculator.h"
#include "rates/roomrates.h"
#include "rates/sampleratedata.h"
#include "shell/database.h"
#include "shell/money.h"
#include "shell/setuprecords.h"
#include "shell/strings.h"

#include <QRandomGenerator>

#include <map>
#include <queue>

namespace fenlark {

namespace {

const char *const FirstNames[] = {"Anna", "Ben", "Carla", "David", "Elena", "Frank", "Grace", "Hugo", "Isabel",
                                  "James", "Karin", "Liam", "Maria", "Noah", "Olivia", "Pieter", "Quinn", "Rosa",
                                  "Sipho", "Thandi", "Ursula", "Victor", "Wendy", "Xolani", "Yusuf", "Zanele",
                                  "José", "Siobhán", "Zoë", "Ngozi"};
const char *const Surnames[] = {"Smith", "O'Brien", "van der Merwe", "Naidoo", "Dlamini", "Botha", "García",
                                "Müller", "Nkosi", "Pillay", "Jones", "Williams", "Brown", "Khumalo", "Fourie",
                                "Jacobs", "Mokoena", "du Plessis", "Peters", "Adams", "Nel", "Kruger", "Zulu",
                                "Ferreira", "Coetzee", "Meyer", "Hendricks", "Pretorius", "Sithole", "Martin"};
const char *const Companies[] = {"Cape Coast Tours", "Karoo Adventures", "Blue Crane Travel", "Fynbos Safaris",
                                 "Wild Coast Journeys", "Acme Consulting", "Baobab Holidays", "Table Bay Events"};
const char *const Titles[] = {"Mr", "Mrs", "Ms", "Dr", ""};

// Rate schemes as the rate data keeps them.
const char *const PerPerson = "1";
const char *const PerUnit = "2";

struct RoomTypeSpec {
    const char *name;
    const char *description;
    const char *scheme;
    qint16 maxAdults;
    qint16 maxOccupancy;
    const char *appliesTo;   // the nights of the weekend rates, Monday first
};
// Rooms are sold per person, the cottage as a whole; Friday and Saturday nights
// take the weekend rates.
const RoomTypeSpec RoomTypes[] = {
    {"Standard Double", "Double bed, garden view", PerPerson, 2, 3, "----XX-"},
    {"Twin", "Two single beds", PerPerson, 2, 2, "----XX-"},
    {"Family Suite", "Double bed and bunk room", PerPerson, 4, 5, "----XX-"},
    {"Garden Cottage", "Self-catering cottage", PerUnit, 4, 6, "----XX-"},
};

template <class T, std::size_t N>
const T &pick(QRandomGenerator &random, const T (&list)[N])
{
    return list[random.bounded(static_cast<quint32>(N))];
}

} // namespace

PropertyGenerator::PropertyGenerator(Options options)
    : m_options(std::move(options))
{
}

PropertyGenerator::Options PropertyGenerator::forYears(int rooms, int years, unsigned seed)
{
    Options o;
    o.rooms = rooms;
    o.seed = seed;
    o.to = QDate::currentDate().addYears(1);
    o.from = o.to.addYears(-years);
    return o;
}

PropertyGenerator::Options PropertyGenerator::demo()
{
    Options o;
    o.rooms = 12;
    o.seed = 7;
    o.from = QDate::currentDate().addDays(-28);
    o.to = QDate::currentDate().addDays(42);
    o.withUsers = false;
    return o;
}

PropertyGenerator::Counts PropertyGenerator::generate(Database &db)
{
    Progress unwatched;
    return *generate(db, unwatched);
}

std::optional<PropertyGenerator::Counts> PropertyGenerator::generate(Database &db, Progress &progress)
{
    QRandomGenerator random(m_options.seed);
    Counts counts;
    Transaction transaction(db);

    // Settings, as the server sends them.
    BBSetup setup;
    setup.BBID = m_options.bbid;
    setup.BBName = m_options.name;
    setup.Password = m_options.password;
    setup.Contacts = QStringLiteral("Reception");
    setup.Address = QStringLiteral("12 Fynbos Road, Stellenbosch");
    setup.PhoneNo = QStringLiteral("+27 21 555 0199");
    setup.Email = QStringLiteral("stay@example.org");
    setup.BookingEmail = setup.Email;
    setup.Conditions = QStringLiteral("Check-in from 14:00, check-out by 10:00.");
    setup.DepositPolicy = QStringLiteral("30% deposit secures the booking.");
    setup.DepositPct = 30;
    setup.DepositDays = 7;
    setup.BankingDetails = QStringLiteral("Demo Bank, account 000 111 222");
    setup.ChildLowerLimit = 2;
    setup.ChildAge1 = 5;
    setup.ChildAge2 = 12;
    setup.ChildFlag1 = QStringLiteral("F");
    setup.ChildFlag2 = QStringLiteral("P");
    setup.ChildRate1 = 0;
    setup.ChildRate2 = 50;
    setup.AllowSameDay = QStringLiteral("Y");
    setup.FullDeposit = QStringLiteral("N");
    setup.ChargeSSRate = QStringLiteral("N");
    setup.CurrencyCode = QStringLiteral("ZAR");
    setup.VatNo = QStringLiteral("4000123456");
    setup.LastUpdated = QDateTime::currentDateTime();
    db.execute(QStringLiteral("delete from bbsetup"));
    setup.update(db);

    for (const auto &[code, rate] : {std::pair<qint16, double>{1, 15.0}, {2, 0.0}}) {
        VatCode vat;
        vat.Code = code;
        vat.VATRate = rate;
        vat.update(db);
    }
    const struct {
        const char *name;
        double price;
    } stockItems[] = {{"Breakfast", 120}, {"Dinner", 260}, {"Bottle of wine", 180}, {"Laundry", 60},
                      {"Airport transfer", 450}, {"Picnic basket", 220}};
    qint32 stockId = 0;
    for (const auto &item : stockItems) {
        Stock stock;
        stock.BBStockID = ++stockId;
        stock.StockName = QString::fromUtf8(item.name);
        stock.Active = QStringLiteral("Y");
        stock.Price = item.price;
        stock.VatCode = 1;
        stock.update(db);
    }

    // Room types and rooms: the rooms are spread over the types in turn.
    const int typeCount = std::min<int>(std::size(RoomTypes), std::max(1, m_options.rooms / 3));
    for (int t = 0; t < typeCount; ++t) {
        RoomType type;
        type.BBRTID = t + 1;
        type.RTName = QString::fromUtf8(RoomTypes[t].name);
        type.RTDesc = QString::fromUtf8(RoomTypes[t].description);
        type.RateScheme = QString::fromLatin1(RoomTypes[t].scheme);
        type.MaxAdults = RoomTypes[t].maxAdults;
        type.MaxOccupancy = RoomTypes[t].maxOccupancy;
        type.AllowChild1 = QStringLiteral("Y");
        type.AllowChild2 = QStringLiteral("Y");
        type.DefaultMealPlanID = 1;
        type.OrderBy = static_cast<qint16>(t + 1);
        type.AppliesTo = QString::fromLatin1(RoomTypes[t].appliesTo);
        type.update(db);
        ++counts.roomTypes;
    }
    std::vector<qint32> roomIds;
    std::map<qint32, int> maxAdults;
    for (int r = 0; r < m_options.rooms; ++r) {
        Room room;
        room.BBRoomID = r + 1;
        room.BBRTID = r % typeCount + 1;
        room.RoomName = room.BBRTID == 4 ? QStringLiteral("Cottage %1").arg(r + 1) : QStringLiteral("Room %1").arg(r + 1);
        room.OrderBy = static_cast<qint16>(r + 1);
        room.update(db);
        roomIds.push_back(room.BBRoomID);
        maxAdults[room.BBRoomID] = RoomTypes[room.BBRTID - 1].maxAdults;
        ++counts.rooms;
    }
    SampleRateData::write(db, m_options.seed);
    const RateData rateData = RateData::load(db);

    if (m_options.withUsers) {
        db.execute(QStringLiteral("insert into vmgroup (GroupID, GroupName, CancelBooking, CancelRoom, RunReports, ExtrasDelete, PaymentsDelete) "
                                  "values (1, 'Managers', 1, 1, 1, 1, 1), (2, 'Reception', 0, 1, 0, 0, 0)"));
        db.execute(QStringLiteral("insert into vmuser (UserID, UserName, Password, GroupID) values (1, 'Thandi', 'manager', 1), "
                                  "(2, 'Sam', 'desk', 2), (3, 'Lee', 'desk', 2)"));
    }

    // Clients: a pool that grows as bookings are made, with returning guests.
    std::vector<qint32> clients;
    qint32 nextClient = 0;
    auto newClient = [&](const QDate &created) {
        Client c;
        c.BBClientID = ++nextClient;
        c.ClientID = c.BBClientID;
        c.DateCreated = QDateTime(created, QTime(9, 0));
        c.CreatedOn = QStringLiteral("P");
        const quint32 kind = random.bounded(20u);
        c.ClientType = kind == 0 ? QStringLiteral("T") : kind == 1 ? QStringLiteral("C") : QStringLiteral("I");
        if (c.ClientType == QLatin1String("I")) {
            c.Title = QString::fromUtf8(pick(random, Titles));
            c.FirstName = QString::fromUtf8(pick(random, FirstNames));
            c.Surname = QString::fromUtf8(pick(random, Surnames));
        } else {
            c.Company = QString::fromUtf8(pick(random, Companies));
            c.FirstName = QString::fromUtf8(pick(random, FirstNames));
        }
        c.PhoneNo = QStringLiteral("+27 8%1 555 %2").arg(random.bounded(10u)).arg(1000 + random.bounded(9000u));
        c.Email = (c.FirstName.isEmpty() ? QStringLiteral("info") : c.FirstName.toLower()) + QStringLiteral("@example.org");
        c.Active = QStringLiteral("Y");
        c.insertKeyed(db);
        clients.push_back(c.BBClientID);
        ++counts.clients;
        return c.BBClientID;
    };

    // Bookings: rooms become free in date order; each booking starts after a
    // short gap and sometimes takes other rooms that are free on the same dates.
    using Slot = std::pair<QDate, qint32>; // date the room is free from, room
    std::priority_queue<Slot, std::vector<Slot>, std::greater<>> freeFrom;
    for (qint32 room : roomIds)
        freeFrom.push({m_options.from.addDays(random.bounded(3u)), room});
    std::map<qint32, QDate> roomFree;
    for (qint32 room : roomIds)
        roomFree[room] = m_options.from;

    const QDate today = QDate::currentDate();
    qint32 nextBooking = 0, nextGuest = 0, nextAccount = 0, nextPayment = 0, nextExtra = 0;
    const QString making = getString(5303, QStringLiteral("Making the property's bookings"));
    const qint64 days = m_options.from.daysTo(m_options.to);
    while (!freeFrom.empty()) {
        auto [free, room] = freeFrom.top();
        freeFrom.pop();
        // Stopped: the transaction rolls back and no part of the property stays.
        if (!progress.step(m_options.from.daysTo(free), days, making))
            return std::nullopt;
        if (free < roomFree[room]) { // stale entry
            freeFrom.push({roomFree[room], room});
            continue;
        }
        static const int gaps[] = {0, 0, 0, 1, 1, 2, 3, 5};
        const QDate arrival = free.addDays(pick(random, gaps));
        static const int lengths[] = {1, 1, 2, 2, 2, 3, 3, 4, 5, 7, 10, 14};
        const int nights = pick(random, lengths);
        const QDate departure = arrival.addDays(nights);
        if (departure > m_options.to)
            continue;

        std::vector<qint32> legRooms = {room};
        if (random.bounded(100u) < 12) {
            for (auto &[other, otherFree] : roomFree) {
                if (other != room && otherFree <= arrival && legRooms.size() < 3 && random.bounded(3u) == 0)
                    legRooms.push_back(other);
            }
        }
        for (qint32 r : legRooms) {
            roomFree[r] = departure;
            freeFrom.push({departure, r});
        }

        const qint32 client = (!clients.empty() && random.bounded(4u) == 0)
            ? clients[random.bounded(static_cast<quint32>(clients.size()))]
            : newClient(arrival.addDays(-static_cast<int>(random.bounded(60u))));

        QString status;
        const bool unavailable = random.bounded(80u) == 0;
        if (unavailable)
            status = QStringLiteral("U");
        else if (departure <= today)
            status = random.bounded(5u) == 0 ? QStringLiteral("C") : QStringLiteral("S");
        else {
            static const char *const future[] = {"C", "C", "C", "W", "W", "P", "R", "O"};
            status = QString::fromLatin1(pick(random, future));
        }

        Account account;
        account.BBAccountID = ++nextAccount;
        account.AccountID = account.BBAccountID;
        account.InvoiceTo = client;
        account.Status = status == QLatin1String("S") ? QStringLiteral("C") : QStringLiteral("O");
        account.VatCode = 1;
        if (!unavailable)
            account.insertKeyed(db);

        Booking booking;
        booking.BBBookingID = ++nextBooking;
        booking.BookingID = booking.BBBookingID;
        booking.BookingType = random.bounded(6u) == 0 ? QStringLiteral("P") : QStringLiteral("N");
        booking.BookingDate = QDateTime(arrival.addDays(-static_cast<int>(random.bounded(90u))), QTime(10, 30));
        booking.FromDate = arrival;
        booking.ToDate = departure;
        booking.Status = status;
        booking.MadeBy = client;
        booking.BBRateSheetID = 0; // the rack sheet
        booking.BBAccountID = unavailable ? 0 : account.BBAccountID;
        booking.Source = random.bounded(3u) == 0 ? QStringLiteral("Website") : QStringLiteral("Telephone");
        booking.ReservedUntil = (status == QLatin1String("P") || status == QLatin1String("R"))
            ? QDateTime(std::min(arrival, today.addDays(1 + static_cast<int>(random.bounded(10u)))), QTime(12, 0))
            : QDateTime(QDate(1899, 12, 31), QTime(0, 0));
        booking.CurrencyCode = QStringLiteral("ZAR");
        booking.ExchangeRate = 1;

        double total = 0;
        for (qint32 r : legRooms) {
            Guest guest;
            guest.BBGuestID = ++nextGuest;
            guest.GuestID = guest.BBGuestID;
            guest.BBBookingID = booking.BBBookingID;
            guest.BBRoomID = r;
            guest.BBClientID = client;
            guest.NoAdults = unavailable ? 0 : static_cast<qint16>(1 + random.bounded(static_cast<quint32>(maxAdults[r])));
            const std::vector<qint32> offered = getRoomRates(rateData, arrival, departure, r);
            guest.BBRateID = unavailable || offered.empty() ? 0 : offered.front();
            if (!unavailable && random.bounded(6u) == 0)
                guest.Child1 = 1;
            if (departure <= today)
                guest.CheckInOut = QStringLiteral("K");
            else if (arrival <= today)
                guest.CheckInOut = QStringLiteral("I");
            guest.insertKeyed(db);
            ++counts.legs;
            if (unavailable)
                continue;
            const StayPrice price = priceStay(rateData, {r, guest.BBRateID, booking.BBRateSheetID, arrival, departure,
                                                         guest.NoAdults, guest.Child1, guest.Child2});
            for (QDate night = arrival; night < departure; night = night.addDays(1)) {
                DailyRate rate;
                rate.CalDate = night;
                rate.BBBookingID = booking.BBBookingID;
                rate.BBRoomID = r;
                rate.RoomRate = price.nights.value(night);
                rate.update(db);
                total += rate.RoomRate;
                ++counts.nights;
            }
            if (arrival <= today && random.bounded(3u) == 0) {
                Extra extra;
                extra.BBExtraID = ++nextExtra;
                extra.ExtraID = extra.BBExtraID;
                extra.BBGuestID = guest.BBGuestID;
                extra.ExtraDate = arrival;
                extra.BBStockID = 1 + random.bounded(static_cast<quint32>(std::size(stockItems)));
                extra.Qty = 1 + random.bounded(3u);
                extra.Price = stockItems[extra.BBStockID - 1].price;
                extra.BBAccountID = account.BBAccountID;
                extra.insertKeyed(db);
                total += extra.Qty * extra.Price;
            }
        }
        booking.Deposit = roundMoney(total * setup.DepositPct / 100.0);
        booking.insertKeyed(db);
        ++counts.bookings;

        if (status == QLatin1String("S") || status == QLatin1String("C")) {
            Payment payment;
            payment.BBPaymentID = ++nextPayment;
            payment.PaymentID = payment.BBPaymentID;
            payment.BBAccountID = account.BBAccountID;
            payment.CreateDate = QDateTime(arrival, QTime(11, 0));
            payment.CreateUser = QStringLiteral("admin");
            payment.PaymentDate = arrival;
            payment.PaymentType = QString::number(random.bounded(3u));
            payment.Reference = QStringLiteral("PMT%1").arg(payment.BBPaymentID);
            payment.Amount = status == QLatin1String("S") ? roundMoney(total) : booking.Deposit;
            payment.insertKeyed(db);
        }
    }

    // Keys handed out from here on follow the generated ones.
    db.execute(QStringLiteral("delete from dblog"));
    transaction.commit();
    return counts;
}

} // namespace fenlark
