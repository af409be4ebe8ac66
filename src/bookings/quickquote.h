#pragma once

#include "shell/refusal.h"

#include <QDate>
#include <QString>
#include <QStringList>

#include <vector>

namespace fenlark {

class Calendar;
class ChildPolicy;
class Database;
class RateData;
class Room;

// A telephone query: a stay, a head count and a rate sheet.
struct QuickQuoteRequest {
    QDate from;       // first night
    QDate to;         // day of leaving
    qint16 adults = 2;
    qint16 child1 = 0;
    qint16 child2 = 0;
    qint32 BBRateSheetID = 0;
};

// One rate of a room type priced for the stay.
struct QuotedRate {
    qint32 BBRateID = 0;
    QString name;
    double total = 0;      // the sum of the nights as a booking would store them
    double perNight = 0;   // the total over the nights
};

// A room type with rooms free for the whole stay.
struct QuotedRoomType {
    qint32 BBRTID = 0;
    QString name;
    QString description;
    QStringList rooms;     // the free rooms' names, in the rooms' order
    std::vector<QuotedRate> rates;
};

struct QuickQuote {
    QuickQuoteRequest request;
    // The rate sheet's currency when it is not the property's; empty otherwise.
    QString currency;
    std::vector<QuotedRoomType> types;

    int nights() const;
    // The result box: for each type "<type> x <n> Available", its units, and a
    // line per rate with the total and the price per night.
    QString text() const;
    // What Copy puts on the clipboard: the stay, the head count, the result box
    // and the descriptions of the room types.
    QString copyText(const ChildPolicy &policy) const;
};

// The room types with rooms free on every night of the stay (the calendar is
// filled for those dates first), in the order their rooms come, each with every
// rate its first free room is offered at, priced by the rates engine. Nothing is
// written. Refused when the day of leaving is not after the arrival.
Result<QuickQuote> quickQuote(Database &db, Calendar &calendar, const RateData &rates, const std::vector<Room> &rooms,
                              const QuickQuoteRequest &request);

} // namespace fenlark
