#pragma once

#include "shell/changes.h"
#include "shell/refusal.h"

#include <QDate>
#include <QList>
#include <QString>

#include <optional>
#include <vector>

namespace fenlark {

class BBSetup;
class Database;
class RateData;
struct UserStruct;

// One leg of the rates view: its room, head count and rate code, and one
// amount per night of the stay.
struct RatesLeg {
    qint32 BBRoomID = 0;
    QString roomName;
    qint16 adults = 0;
    qint16 child1 = 0;
    qint16 child2 = 0;
    qint32 BBRateID = 0;
    std::vector<double> rates;    // one per night; what is on screen
    std::vector<double> loaded;   // as stored when the view opened (0.00 for a night without a row)

    // "2 Adults, 1 Child".
    QString headCount() const;
};

// The nightly rates of a booking as the rates view holds them: read, typed over,
// priced again from a rate sheet, and saved. It is the one place where a
// booking's rate sheet and exchange rate change, and where all of its nights
// are priced again. Nothing is written until save().
class BookingRates {
public:
    // Nothing when the booking is missing. Legs come in the rooms' order.
    static std::optional<BookingRates> load(Database &db, qint32 bookingId);

    qint32 bookingId() const { return m_bookingId; }
    const QDate &fromDate() const { return m_from; }
    // The nights of the stay, the arrival night first.
    QList<QDate> nights() const;
    int nightCount() const;
    const std::vector<RatesLeg> &legs() const { return m_legs; }

    qint32 rateSheet() const { return m_sheet; }
    qint32 loadedRateSheet() const { return m_loadedSheet; }
    // The sheet in use; no amount changes until recalculate().
    void setRateSheet(qint32 sheetId) { m_sheet = sheetId; }

    double exchangeRate() const { return m_exchangeRate; }
    // Taken on save only when the sheet's currency is not the property's.
    void setExchangeRate(double rate);

    // Every night of every leg priced anew at the sheet in use; typed amounts
    // are lost, and a leg on manual rates becomes all zeros.
    void recalculate(const RateData &rates);
    // The amount of one night of one leg.
    void setRate(int leg, int night, double amount);
    // Copies a night's amount to every later night of its leg.
    void copyForward(int leg, int night);
    // The sum of every amount, rounded.
    double total() const;

    // Writes every night again (each amount rounded to cents) with the head, the
    // sheet and the exchange rate, in one transaction; the audit names a changed
    // sheet and every amount that differs from the one loaded. Refused when the
    // booking has gone meanwhile.
    Result<Changes> save(Database &db, const BBSetup &setup, const UserStruct &user) const;

private:
    qint32 m_bookingId = 0;
    QDate m_from;
    QDate m_to;
    qint32 m_sheet = 0;
    qint32 m_loadedSheet = 0;
    double m_exchangeRate = 0;
    bool m_exchangeRateChanged = false;
    std::vector<RatesLeg> m_legs;
};

// An amount typed into a rates cell or given to fenlarkctl: the locale's or a
// plain decimal point, blanks around; refused with a clear message when it is
// not a number. More than two decimals are kept: saving rounds to cents.
Result<double> parseRate(const QString &text);

} // namespace fenlark
