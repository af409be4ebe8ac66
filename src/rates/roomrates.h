#pragma once

#include <QDate>
#include <QString>

#include <vector>

namespace fenlark {

class RateData;

// A rate code a room can be booked at, with the name users see.
struct OfferedRate {
    qint32 BBRateID = 0;
    QString name;
};

// The rate codes to offer for a room and stay, the first being the default:
// the room type's rack rates (default meal plan first), then its packages, then
// whole-property packages, each package only when arrival falls in its dates.
std::vector<qint32> getRoomRates(const RateData &data, const QDate &fromDate, const QDate &toDate, qint32 BBRoomID);

// The same list with each code's name.
std::vector<OfferedRate> offeredRates(const RateData &data, const QDate &fromDate, const QDate &toDate, qint32 BBRoomID);

// "Manual rates" for 0, "<room type> - <meal plan>" for a rack rate, the
// package code for a package, "(<id>) not found." when the code leads nowhere.
QString getRateName(const RateData &data, qint32 BBRateID);

} // namespace fenlark
