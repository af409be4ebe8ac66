#include "bookings/quickquote.h"

#include "bookings/staydates.h"
#include "rates/ratedata.h"
#include "rates/ratescalculator.h"
#include "rates/roomrates.h"
#include "shell/calendar.h"
#include "shell/database.h"
#include "shell/money.h"
#include "shell/setuprecords.h"
#include "shell/strings.h"
#include "shell/textformat.h"

#include <QHash>

namespace fenlark {

namespace {

QString amount(const QString &currency, double value)
{
    return currency.isEmpty() ? formatAmount(value) : currency + QLatin1Char(' ') + formatAmount(value);
}

QString longDate(const QDate &date)
{
    return deskLocale().toString(date, QStringLiteral("ddd dd MMMM yyyy"));
}

} // namespace

int QuickQuote::nights() const
{
    return nightCount(request.from, request.to);
}

QString QuickQuote::text() const
{
    QString text;
    for (const QuotedRoomType &type : types) {
        text += type.name + QStringLiteral(" x ") + QString::number(type.rooms.size())
                + getString(6460, QStringLiteral(" Available")) + QLatin1Char('\n');
        text += getString(6461, QStringLiteral("  Units: ")) + type.rooms.join(QStringLiteral(" / ")) + QLatin1Char('\n');
        for (const QuotedRate &rate : type.rates)
            text += QStringLiteral("  ") + rate.name + QStringLiteral(" = ") + amount(currency, rate.total)
                    + getString(6462, QStringLiteral("   (Daily ")) + amount(currency, rate.perNight) + QStringLiteral(")\n");
        text += QLatin1Char('\n');
    }
    return text;
}

QString QuickQuote::copyText(const ChildPolicy &policy) const
{
    QString text;
    text += getString(6463, QStringLiteral("Arrival: ")) + longDate(request.from) + QLatin1Char('\n');
    text += getString(6464, QStringLiteral("Leaving: ")) + longDate(request.to) + QLatin1Char('\n');
    text += getString(6465, QStringLiteral("No. Nights: ")) + QString::number(nights()) + QLatin1Char('\n');
    text += getString(6466, QStringLiteral("Adults: ")) + QString::number(request.adults) + QLatin1Char('\n');
    const std::pair<qint16, QString> children[] = {{request.child1, policy.label1}, {request.child2, policy.label2}};
    for (const auto &[count, band] : children)
        if (count > 0)
            text += getString(6467, QStringLiteral("Children (")) + band + QStringLiteral("): ") + QString::number(count)
                    + QLatin1Char('\n');
    text += QLatin1Char('\n') + this->text();
    text += getString(6468, QStringLiteral("Room Type Description(s):-")) + QLatin1Char('\n');
    for (const QuotedRoomType &type : types)
        text += QStringLiteral("* ") + type.name + QLatin1Char('\n') + type.description + QLatin1Char('\n');
    return text;
}

Result<QuickQuote> quickQuote(Database &db, Calendar &calendar, const RateData &rates, const std::vector<Room> &rooms,
                              const QuickQuoteRequest &request)
{
    if (!request.from.isValid() || !request.to.isValid() || request.to <= request.from)
        return Refusal(6469, QStringLiteral("The leaving date cannot be before the arrival date."), 6470,
                       QStringLiteral("Incorrect dates"));
    if (request.adults < 0 || request.child1 < 0 || request.child2 < 0)
        return Refusal(6471, QStringLiteral("The number of people cannot be negative."), 6472,
                       QStringLiteral("Incorrect number of people"));

    QuickQuote quote;
    quote.request = request;
    quote.currency = db.scalar(QStringLiteral("select ratesheet.CurrencyCode from ratesheet, bbsetup "
                                              "where bbsetup.CurrencyCode <> ratesheet.CurrencyCode and BBRateSheetID = ?"),
                               {request.BBRateSheetID})
                         .toString();

    const QDate lastNight = request.to.addDays(-1);
    calendar.fillCache(db, request.from, lastNight);
    QHash<qint32, size_t> typeAt;
    std::vector<qint32> firstRoom;
    for (const Room &room : rooms) {
        if (room.BBRTID <= 0)
            continue;
        bool booked = false;
        for (QDate night = request.from; night <= lastNight && !booked; night = night.addDays(1))
            booked = calendar.roomIsBooked(night, room.BBRoomID);
        if (booked)
            continue;
        auto at = typeAt.constFind(room.BBRTID);
        if (at == typeAt.constEnd()) {
            QuotedRoomType type;
            type.BBRTID = room.BBRTID;
            if (const RoomTypeRates *known = rates.roomType(room.BBRTID)) {
                type.name = known->row.RTName;
                type.description = known->row.RTDesc;
            }
            at = typeAt.insert(room.BBRTID, quote.types.size());
            quote.types.push_back(std::move(type));
            firstRoom.push_back(room.BBRoomID);
        }
        quote.types[*at].rooms << room.RoomName;
    }

    const int nights = quote.nights();
    for (size_t i = 0; i < quote.types.size(); ++i) {
        for (const OfferedRate &offered : offeredRates(rates, request.from, request.to, firstRoom[i])) {
            const StayPrice price = priceStay(rates, {firstRoom[i], offered.BBRateID, request.BBRateSheetID, request.from,
                                                      request.to, request.adults, request.child1, request.child2});
            QuotedRate rate;
            rate.BBRateID = offered.BBRateID;
            rate.name = offered.name;
            rate.total = price.total;
            rate.perNight = roundMoney(price.total / nights);
            quote.types[i].rates.push_back(std::move(rate));
        }
    }
    return quote;
}

} // namespace fenlark
