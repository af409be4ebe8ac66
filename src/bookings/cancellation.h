#pragma once

#include "shell/changes.h"
#include "shell/refusal.h"

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace fenlark {

class Database;
class RateData;
struct UserStruct;

// The questions a cancellation asks once the checks have passed; the editor
// answers with a Yes/No box and the reason box, fenlarkctl and tests from
// their options.
class CancelQuestions {
public:
    virtual ~CancelQuestions() = default;
    // Cancel the whole booking (multipleRooms: it has more than one room)?
    virtual bool cancelBooking(bool multipleRooms) = 0;
    // Cancel this one room of the booking?
    virtual bool cancelRoom() = 0;
    // The reason written to the audit; nullopt when the user would not give one.
    virtual std::optional<QString> reason() = 0;
};

// The questions as Yes/No boxes (No by default) and the desk's reason box.
class MessageCancelQuestions : public CancelQuestions {
public:
    bool cancelBooking(bool multipleRooms) override;
    bool cancelRoom() override;
    std::optional<QString> reason() override;
};

// What a cancellation did: nothing when the user answered No or gave no reason.
struct CancelOutcome {
    bool cancelled = false;
    Changes changes;
};

// Cancelling a booking or one of its rooms: the user's right, no extras on the
// rooms, the question and the reason, then the rows copied into the cancelled
// tables and deleted, the deletions logged and the audit line written, in one
// transaction. The nightly rates stay where they are, so a restore finds them.
class BookingCancel {
public:
    BookingCancel(Database &db, const UserStruct &user);

    // The head and every leg. Refused when the booking is missing, the user lacks
    // the right, a room has extras, or the reason is blank.
    Result<CancelOutcome> cancelBooking(qint32 bookingId, CancelQuestions &questions);
    // One leg; the head stays, even when it was the booking's only room.
    Result<CancelOutcome> cancelRoom(qint32 bookingId, qint32 roomId, CancelQuestions &questions);

private:
    Outcome checkReason(const std::optional<QString> &reason) const;

    Database &m_db;
    const UserStruct &m_user;
};

// One cancelled room as the list of cancellations shows it.
struct CancelledLeg {
    qint32 BBGuestID = 0;
    qint32 BBRoomID = 0;
    qint32 BBBookingID = 0;
    QString roomName;
    QDate fromDate;      // invalid when neither the live nor the cancelled booking is there
    QDate toDate;
    QString client;      // empty when the client is missing
    QDateTime deleted;
    QString user;
};

// The cancelled rooms, newest first, at most limit of them; a surname filters
// them as the client search does (a prefix, in any alphabet, "%" a wildcard).
// The dates come from the cancelled booking, else from the live booking of a
// room cancelled alone.
std::vector<CancelledLeg> cancelledLegs(Database &db, const QString &surname = {}, int limit = 2000);

// What a restore did.
struct RestoreOutcome {
    qint32 BBBookingID = 0;
    qint32 BBRoomID = 0;
    bool headRestored = false;
    // The names of the booking's other rooms still cancelled, in the rooms' order.
    QStringList stillCancelled;
    // The room was sold meanwhile: the restore made a double booking.
    bool doubleBooked = false;
    Changes changes;
};

// Brings a cancelled room back under its old keys, with its head when that was
// cancelled too, and its nightly rates: the ones it left behind stay, nights of
// the stay without one are priced. Refused before anything is written when the
// room is live already, is not among the cancellations, has neither a live nor
// a cancelled booking, or its booking has a live room there again. A room sold
// meanwhile is restored all the same; the double-booking check then reports it.
Result<RestoreOutcome> restoreLeg(Database &db, const RateData &rates, const UserStruct &user, qint32 guestId);

} // namespace fenlark
