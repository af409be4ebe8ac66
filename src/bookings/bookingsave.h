#pragma once

#include "bookings/stayquestions.h"
#include "shell/changes.h"
#include "shell/refusal.h"

#include <QDate>
#include <QDateTime>
#include <QString>

#include <optional>
#include <vector>

namespace fenlark {

class BBSetup;
class Database;
class RateData;
struct UserStruct;

// What the booking editor holds for one leg: the values as stored when it was
// loaded and the values on screen now.
struct BookingEdit {
    qint32 BBBookingID = 0;
    qint32 loadedRoomId = 0;   // the leg's room as stored
    qint32 roomId = 0;         // the leg's room on screen

    QDate storedFrom, storedTo;
    QDate fromDate, toDate;

    QString storedStatus;
    QString status;
    QDateTime reservedUntil;   // the hold chosen on screen

    qint32 MadeBy = 0;
    QString notes;
    QString source;
    double agentComm = 0;
    double deposit = 0;

    qint32 BBClientID = 0;
    qint32 BBClient2ID = 0;
    qint32 storedRateID = 0;
    qint32 BBRateID = 0;
    qint16 storedAdults = 0, storedChild1 = 0, storedChild2 = 0;
    qint16 adults = 0, child1 = 0, child2 = 0;
    bool checkedIn = false;
    bool checkedOut = false;
    QString reference;
    qint32 bookingAccountId = 0;
    qint32 legAccountId = 0;

    // Price every night of the stay anew instead of keeping the stored nights.
    bool repriceAll = false;

    bool datesChanged() const { return fromDate != storedFrom || toDate != storedTo; }
    bool roomChanged() const { return roomId != loadedRoomId; }
    bool headCountChanged() const
    {
        return adults != storedAdults || child1 != storedChild1 || child2 != storedChild2;
    }
};

// The leg of that room of that booking as stored, on screen unchanged; the
// booking's and the leg's accounts as they stand. Nothing when either is missing.
std::optional<BookingEdit> loadBookingEdit(Database &db, qint32 bookingId, qint32 roomId);

// A booking opened without an account, or whose account has gone, gets the open
// account of the client who made it, saved at once; the account's key.
qint32 ensureBookingAccount(Database &db, qint32 bookingId);

// The questions a save asks on the way; the editor answers with Yes/No boxes,
// fenlarkctl from its options. They are all asked before anything is written.
class SaveQuestions : public StayQuestions {
public:
    // Dates changed on a booking with other legs: change them all?
    virtual bool changeAllLegs() = 0;
    // The status changed and other bookings share the account: change them too?
    virtual bool changeLinkedBookings() = 0;
    // Dates, head count or rate code changed: look at the rates now?
    virtual bool checkRates() = 0;
    // The leg moved into a room of another type: price its nights at the new
    // room's rates?
    virtual bool repriceAtNewRoom(const QString &roomName) = 0;
};

// The questions as Yes/No boxes through the installed message sink.
class MessageSaveQuestions : public SaveQuestions {
public:
    bool acceptOverLimit(const QString &roomName, int adults, int people, int maxAdults, int maxOccupancy) override;
    bool acceptPastStart(const QDate &fromDate) override;
    bool changeAllLegs() override;
    bool changeLinkedBookings() override;
    bool checkRates() override;
    bool repriceAtNewRoom(const QString &roomName) override;
};

// The outcome of a save that went through.
struct SaveOutcome {
    bool reviewRates = false;   // the user asked to see the rates
    Changes changes;
};

// A split that went through: the booking broken off, each part with its deposit.
struct SplitOutcome {
    qint32 newBookingId = 0;
    double oldDeposit = 0;
    double newDeposit = 0;
    Changes changes;
};

// Saving an edited booking leg: the checks that protect the calendar, the
// questions, then the head, the linked heads, the leg and its nights in one
// transaction, with the audit of date and room changes. A refused change says
// why and writes nothing.
class BookingSave {
public:
    BookingSave(Database &db, const RateData &rates, const BBSetup &setup, const UserStruct &user, SaveQuestions &questions);

    // On success the stored values of edit take the screen's. When the dates
    // could not change for all legs, the edit's dates go back to the stored ones.
    Result<SaveOutcome> save(BookingEdit &edit);

    // No other booking may hold any of the booking's rooms (the current leg's
    // on-screen room in place of its stored one) on the new dates.
    Outcome checkDates(const BookingEdit &edit) const;
    // No other booking may hold the new room on the screen's dates, nor may this
    // booking have a leg there already.
    Outcome checkRoom(const BookingEdit &edit) const;
    // The checks of whichever of the dates and the room changed.
    Outcome checkStay(const BookingEdit &edit, bool datesChanged, bool roomChanged) const;
    // The other bookings whose status follows this one's: empty unless the
    // status changed, the booking has an account others share and the user agrees.
    std::vector<qint32> linkedBookings(const BookingEdit &edit) const;

    // Splits the leg in that room off into a booking of its own; each part asks
    // the deposit its own total calls for. Refused when the booking or leg is
    // missing or the leg is the booking's only one.
    Result<SplitOutcome> split(qint32 bookingId, qint32 roomId);

private:
    Outcome checkValues(const BookingEdit &edit) const;
    Outcome askAboutLimits(const BookingEdit &edit) const;
    Outcome saveBooking(BookingEdit &edit, const std::vector<qint32> &linked, bool repriceLeg);
    void adjustDailyRates(const BookingEdit &edit);
    void repriceLeg(const BookingEdit &edit);
    double bookingTotal(qint32 bookingId) const;

    Database &m_db;
    const RateData &m_rates;
    const BBSetup &m_setup;
    const UserStruct &m_user;
    SaveQuestions &m_questions;
};

} // namespace fenlark
