#pragma once

#include "shell/refusal.h"

#include <QDate>
#include <QString>

#include <vector>

namespace fenlark {

class Database;
class RateData;

// What is counted: rooms sold, or beds sold (adults; a room sold as a whole
// unit counts as one bed-unit whatever it sleeps).
enum class OccupancyMode { Rooms, Beds };

struct OccupancyRequest {
    QDate from;    // first night counted
    QDate to;      // last night counted, included
    std::vector<qint32> rooms;
    OccupancyMode mode = OccupancyMode::Rooms;
};

// One night of the span over the chosen rooms.
struct NightOccupancy {
    QDate date;
    int available = 0;
    int sold = 0;
};

struct OccupancyFigures {
    int available = 0;
    int sold = 0;
    std::vector<NightOccupancy> nights;

    // sold / available as a percentage; 0 when nothing was available. May pass
    // 100 when a room sleeps more adults than its type's limit.
    double percent() const;
    // "##0.0%".
    QString percentText() const;
    // The percentage for a gauge, cut off at 100.
    int gauge() const;
};

// How full the chosen rooms were from the first night to the last. A night of a
// room out of service ("U") counts neither as available nor as sold; a room is
// sold on the nights from its arrival to the night before its departure. By
// beds a room offers its type's MaxAdults (none without a type) and sells the
// adults of the leg; by rooms each room-night counts one. Refused when no room
// is chosen or the last night is before the first.
Result<OccupancyFigures> occupancy(Database &db, const RateData &rates, const OccupancyRequest &request);

} // namespace fenlark
