#pragma once

#include "shell/changes.h"

#include <QDate>
#include <QDateTime>
#include <QHash>
#include <QString>

#include <vector>

namespace fenlark {

class Database;

// A provisional booking whose hold has run out, as the desk names it.
struct ProvisionalReminder {
    qint32 BBBookingID = 0;
    qint32 firstRoomId = 0;   // the room the booking opens on; 0 when it has no leg
    QString guest;            // who made the booking
    QDate arrival;

    // "Hugo Ramos arriving vie 04 dic 2026", in the desk's language.
    QString text() const;
};

// Which provisional bookings the desk should be reminded of. A reminder is due
// when a "P" booking's hold ran out; once the desk has answered it, it rests for
// the rest of the session, and only a change to the booking (its dates, status,
// client, hold, notes, rooms or heads, made here or anywhere else) makes it due
// again. Answering it does not count as a change: what the person changed while
// looking at the booking, or the postponement itself, is taken as the answer.
class ProvisionalReminders {
public:
    // The reminders due at that moment, in the order of the bookings' keys.
    std::vector<ProvisionalReminder> due(Database &db, const QDateTime &now = QDateTime::currentDateTime()) const;

    // The booking has been looked at: its reminder rests as the booking stands now.
    void answered(Database &db, qint32 bbBookingId);

    // "Not now": the hold goes four hours on from now, a logged write so that the
    // server and the other desks wait too, and the reminder rests. Nothing is
    // written for a booking that has gone or is no longer provisional.
    Changes postpone(Database &db, qint32 bbBookingId, const QDateTime &now = QDateTime::currentDateTime());

private:
    // What the booking looks like to a person, as one text: any change gives another.
    static QString stateOf(Database &db, qint32 bbBookingId);

    QHash<qint32, QString> m_answered;
};

} // namespace fenlark
