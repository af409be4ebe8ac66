#pragma once

#include "bookings/stayquestions.h"
#include "shell/changes.h"
#include "shell/refusal.h"

#include <QDate>
#include <QString>

#include <vector>

namespace fenlark {

class BBSetup;
class Database;
class RateData;
struct UserStruct;

// The deposit asked for a stay: a one-night stay pays in full when the property
// says so, any other the property's percentage of the total, not rounded.
double calcDeposit(const BBSetup &setup, double total, int nights);
// The notice for a booking whose total is 0: its rates are still to be entered.
void tellRatesNotEntered();

// The adults a new room starts with: the DEFUSER preference, 2 without one.
qint16 defaultAdults(const QString &defUserPreference);

// One room of a new booking as the user left it in the grid.
struct NewBookingRoom {
    qint32 BBRoomID = 0;
    qint32 BBRateID = 0;   // 0: "No rate selected", a manual rate
    qint16 NoAdults = 2;
    qint16 Child1 = 0;
    qint16 Child2 = 0;
};

// Who a new booking is for and what it holds. A BBClientID of 0 means a new
// client made from the typed name fields.
struct NewBookingRequest {
    QDate FromDate;        // first night
    QDate ToDate;          // day of leaving
    qint32 BBClientID = 0;
    QString title;
    QString firstName;
    QString surname;
    QString company;
    std::vector<NewBookingRoom> rooms;
};

struct NewBookingLeg {
    qint32 BBRoomID = 0;
    qint32 BBGuestID = 0;
};

// The price of a new booking as it would be stored: each room's stay total and
// the booking's, every night rounded as it is written.
struct NewBookingQuote {
    std::vector<double> roomTotals;   // in the order of the request's rooms
    double total = 0;
};
// The client's rate sheet prices the stay (a new client has none).
NewBookingQuote quoteNewBooking(Database &db, const RateData &rates, const NewBookingRequest &request);

// The questions as Yes/No boxes (No by default) through the installed message sink.
class MessageStayQuestions : public StayQuestions {
public:
    bool acceptOverLimit(const QString &roomName, int adults, int people, int maxAdults, int maxOccupancy) override
    {
        return askOverLimit(roomName, adults, people, maxAdults, maxOccupancy);
    }
    bool acceptPastStart(const QDate &fromDate) override { return askPastStart(fromDate); }
};

struct NewBookingResult {
    qint32 BBBookingID = 0;
    qint32 BBClientID = 0;
    QString clientName;
    qint32 BBAccountID = 0;
    qint32 firstRoomId = 0;
    std::vector<NewBookingLeg> legs;
    double total = 0;
    double deposit = 0;
    Changes changes;
};

// Writes a new booking made at this desk: the head (so that its key exists), a
// client when none was chosen, the currency of the rate sheet, one leg per room,
// each night priced by the rate calculator and rounded, the account, the deposit
// and the head again, so that the head is the last change-log row; then the
// audit line. All of it in one transaction: a failure leaves nothing behind.
class BookingWriter {
public:
    BookingWriter(Database &db, const RateData &rates, const BBSetup &setup, const UserStruct &user);

    // Refused, with nothing written, when the request cannot be saved (no name, no
    // room, a room or rate code that does not exist or is not offered for the
    // room, dates out of order, a missing or retired client) or when a question
    // about its limits is answered No. Database errors pass on as exceptions.
    Result<NewBookingResult> save(const NewBookingRequest &request, StayQuestions &questions);

private:
    Outcome validate(const NewBookingRequest &request) const;
    Outcome roomsFree(const NewBookingRequest &request) const;

    Database &m_db;
    const RateData &m_rates;
    const BBSetup &m_setup;
    const UserStruct &m_user;
};

} // namespace fenlark
