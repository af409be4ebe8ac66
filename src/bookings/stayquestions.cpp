#include "bookings/stayquestions.h"

#include "rates/ratedata.h"
#include "shell/messages.h"
#include "shell/strings.h"

namespace fenlark {

bool askOverLimit(const QString &roomName, int adults, int people, int maxAdults, int maxOccupancy)
{
    return messages::ask(5970, QStringLiteral("%1 takes at most %2 adults and %3 people in all; this booking puts %4 "
                                              "adults and %5 people in it. Book it all the same?"),
                         5971, QStringLiteral("More people than the room takes"), true,
                         {roomName, QString::number(maxAdults), QString::number(maxOccupancy), QString::number(adults),
                          QString::number(people)});
}

bool askPastStart(const QDate &fromDate)
{
    return messages::ask(5972, QStringLiteral("This stay starts on %1, before today. Book it all the same?"), 5973,
                         QStringLiteral("Stay in the past"), true,
                         {deskLocale().toString(fromDate, QStringLiteral("ddd dd MMM yyyy"))});
}

Outcome checkRoomLimits(const RateData &rates, qint32 roomId, int adults, int child1, int child2, StayQuestions &questions)
{
    const Room *room = rates.room(roomId);
    const RoomTypeRates *type = room ? rates.roomType(room->BBRTID) : nullptr;
    if (!type)
        return Done{};
    const int people = adults + child1 + child2;
    const int maxAdults = type->row.MaxAdults;
    const int maxOccupancy = type->row.MaxOccupancy;
    const bool over = (maxAdults > 0 && adults > maxAdults) || (maxOccupancy > 0 && people > maxOccupancy);
    if (over && !questions.acceptOverLimit(room->RoomName, adults, people, maxAdults, maxOccupancy))
        return Refusal(5981, QStringLiteral("Nothing was saved: change the number of people."), 5971,
                       QStringLiteral("More people than the room takes"))
            .asInformation();
    return Done{};
}

Outcome checkStartDate(const QDate &fromDate, StayQuestions &questions, const QDate &today)
{
    if (fromDate < today && !questions.acceptPastStart(fromDate))
        return Refusal(5982, QStringLiteral("Nothing was saved: change the dates."), 5973, QStringLiteral("Stay in the past"))
            .asInformation();
    return Done{};
}

} // namespace fenlark
