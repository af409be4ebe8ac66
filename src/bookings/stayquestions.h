#pragma once

#include "shell/refusal.h"

#include <QDate>
#include <QString>

namespace fenlark {

class RateData;

// The questions about a stay's limits, asked before anything is written: limits
// warn rather than forbid, and a careless Enter answers No.
class StayQuestions {
public:
    virtual ~StayQuestions() = default;
    // A room holds more adults than its type's MaxAdults, or more people than its
    // MaxOccupancy: book it all the same?
    virtual bool acceptOverLimit(const QString &roomName, int adults, int people, int maxAdults, int maxOccupancy) = 0;
    // The stay starts before today: book it all the same?
    virtual bool acceptPastStart(const QDate &fromDate) = 0;
};

// The questions as Yes/No boxes (No by default) through the installed message sink.
bool askOverLimit(const QString &roomName, int adults, int people, int maxAdults, int maxOccupancy);
bool askPastStart(const QDate &fromDate);

// Asks about a room's limits when the heads exceed its type's; refused (nothing
// to write) when the answer is No. A room or type the rate data lacks has no limits.
Outcome checkRoomLimits(const RateData &rates, qint32 roomId, int adults, int child1, int child2, StayQuestions &questions);
// Asks about a stay that starts before today; refused when the answer is No.
Outcome checkStartDate(const QDate &fromDate, StayQuestions &questions, const QDate &today = QDate::currentDate());

} // namespace fenlark
