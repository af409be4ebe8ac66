#include "bookings/bookingrates.h"

#include "bookings/bookingrecords.h"
#include "bookings/staydates.h"
#include "rates/ratedata.h"
#include "rates/ratescalculator.h"
#include "rates/raterecords.h"
#include "shell/database.h"
#include "shell/money.h"
#include "shell/security.h"
#include "shell/setuprecords.h"
#include "shell/strings.h"

#include <cmath>

namespace fenlark {

namespace {

QString money(double amount)
{
    return QString::number(amount, 'f', 2);
}

} // namespace

QString RatesLeg::headCount() const
{
    const int children = child1 + child2;
    return QString::number(adults) + (adults == 1 ? getString(6480, QStringLiteral(" Adult, ")) : getString(6481, QStringLiteral(" Adults, ")))
           + QString::number(children)
           + (children == 1 ? getString(6482, QStringLiteral(" Child")) : getString(6483, QStringLiteral(" Children")));
}

std::optional<BookingRates> BookingRates::load(Database &db, qint32 bookingId)
{
    Booking head;
    if (!head.fetch(db, bookingId))
        return std::nullopt;
    BookingRates view;
    view.m_bookingId = bookingId;
    view.m_from = head.FromDate;
    view.m_to = head.ToDate;
    view.m_sheet = view.m_loadedSheet = head.BBRateSheetID;
    view.m_exchangeRate = head.ExchangeRate;

    const int nights = view.nightCount();
    QSqlQuery q = db.query(QStringLiteral("select guest.BBRoomID, room.RoomName, guest.NoAdults, guest.Child1, guest.Child2, "
                                          "guest.BBRateID from guest left join room on guest.BBRoomID = room.BBRoomID "
                                          "where guest.BBBookingID = ? order by room.OrderBy, guest.BBRoomID"),
                           {bookingId});
    while (q.next()) {
        RatesLeg leg;
        leg.BBRoomID = q.value(0).toInt();
        leg.roomName = q.value(1).isNull() ? QString::number(leg.BBRoomID) : q.value(1).toString();
        leg.adults = static_cast<qint16>(q.value(2).toInt());
        leg.child1 = static_cast<qint16>(q.value(3).toInt());
        leg.child2 = static_cast<qint16>(q.value(4).toInt());
        leg.BBRateID = q.value(5).toInt();
        leg.loaded.assign(static_cast<size_t>(nights), 0.0);
        view.m_legs.push_back(std::move(leg));
    }
    q.finish();
    for (RatesLeg &leg : view.m_legs) {
        for (const DailyRate &night : DailyRate::forLeg(db, bookingId, leg.BBRoomID)) {
            const qint64 n = view.m_from.daysTo(night.CalDate);
            if (n >= 0 && n < nights)
                leg.loaded[static_cast<size_t>(n)] = night.RoomRate;
        }
        leg.rates = leg.loaded;
    }
    return view;
}

QList<QDate> BookingRates::nights() const
{
    return nightsOf(m_from, m_to);
}

int BookingRates::nightCount() const
{
    return fenlark::nightCount(m_from, m_to);
}

void BookingRates::setExchangeRate(double rate)
{
    m_exchangeRate = rate;
    m_exchangeRateChanged = true;
}

void BookingRates::recalculate(const RateData &rates)
{
    const QList<QDate> stay = nights();
    for (RatesLeg &leg : m_legs) {
        const StayPrice price = priceStay(rates, {leg.BBRoomID, leg.BBRateID, m_sheet, m_from, m_to, leg.adults, leg.child1,
                                                  leg.child2});
        for (int n = 0; n < stay.size(); ++n)
            leg.rates[static_cast<size_t>(n)] = price.nights.value(stay.at(n));
    }
}

void BookingRates::setRate(int leg, int night, double amount)
{
    m_legs.at(static_cast<size_t>(leg)).rates.at(static_cast<size_t>(night)) = amount;
}

void BookingRates::copyForward(int leg, int night)
{
    std::vector<double> &rates = m_legs.at(static_cast<size_t>(leg)).rates;
    const double amount = rates.at(static_cast<size_t>(night));
    for (size_t n = static_cast<size_t>(night) + 1; n < rates.size(); ++n)
        rates[n] = amount;
}

double BookingRates::total() const
{
    double total = 0;
    for (const RatesLeg &leg : m_legs)
        for (double amount : leg.rates)
            total += roundMoney(amount);
    return roundMoney(total);
}

Result<Changes> BookingRates::save(Database &db, const BBSetup &setup, const UserStruct &user) const
{
    Transaction transaction(db);
    Booking head;
    if (!head.fetch(db, m_bookingId))
        return Refusal(5823, QStringLiteral("Error: Could not find booking data. Call veldmoor (021 555 0108)."), 5824,
                       QStringLiteral("Data Error"));
    const QString id = QString::number(m_bookingId);
    if (m_sheet != m_loadedSheet) {
        SecurityAudit audit;
        audit.User(user);
        audit.setReason(QStringLiteral("Booking ID ") + id);
        audit.addAudit(db, QStringLiteral("Ratesheet Change: From ID %1 to %2").arg(m_loadedSheet).arg(m_sheet));
        head.BBRateSheetID = m_sheet;
    }
    DailyRate::deleteBooking(db, m_bookingId);
    const QList<QDate> stay = nights();
    for (const RatesLeg &leg : m_legs) {
        for (int n = 0; n < stay.size(); ++n) {
            DailyRate rate;
            rate.CalDate = stay.at(n);
            rate.BBBookingID = m_bookingId;
            rate.BBRoomID = leg.BBRoomID;
            rate.RoomRate = roundMoney(leg.rates[static_cast<size_t>(n)]);
            rate.update(db);
            const double loaded = roundMoney(leg.loaded[static_cast<size_t>(n)]);
            if (rate.RoomRate == loaded)
                continue;
            SecurityAudit audit;
            audit.User(user);
            audit.setReason(QStringLiteral("From %1 to %2").arg(money(loaded), money(rate.RoomRate)));
            audit.addAudit(db, QStringLiteral("Booking (ID %1) Rate Change: %2 - %3 (%4)")
                                   .arg(id, rate.CalDate.toString(Qt::ISODate), leg.roomName)
                                   .arg(leg.BBRoomID));
        }
    }
    RateSheet sheet;
    const QString currency = sheet.fetch(db, m_sheet) ? sheet.CurrencyCode : setup.CurrencyCode;
    if (currency != setup.CurrencyCode && m_exchangeRateChanged)
        head.ExchangeRate = m_exchangeRate;
    head.update(db);
    transaction.commit();
    Changes changes;
    changes.booking(m_bookingId);
    return changes;
}

Result<double> parseRate(const QString &text)
{
    std::optional<double> amount = parseAmount(text, deskLocale());
    if (!amount)
        amount = parseAmount(text, QLocale::c());
    if (!amount || !std::isfinite(*amount) || std::abs(*amount) > 1e9)
        return Refusal(5991, QStringLiteral("\"%1\" is not an amount."), 5992, QStringLiteral("Incorrect amount")).arg(text.left(40));
    return *amount;
}

} // namespace fenlark
