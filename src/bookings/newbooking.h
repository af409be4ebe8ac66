#pragma once

#include <QDate>
#include <QString>

#include <optional>
#include <vector>

namespace fenlark {

class BBSetup;
class Calendar;
class Database;
class RateData;
struct UserStruct;

// The deposit asked for a stay: a one-night stay pays in full when the property
// says so, any other the property's percentage of the total, not rounded. A total
// of 0 tells the user that the rates are still to be entered, and goes on.
double calcDeposit(const BBSetup &setup, double total, int nights);

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

struct NewBookingResult {
    qint32 BBBookingID = 0;
    qint32 BBClientID = 0;
    QString clientName;
    qint32 BBAccountID = 0;
    qint32 firstRoomId = 0;
    std::vector<NewBookingLeg> legs;
    double total = 0;
    double deposit = 0;
};

// Writes a new booking made at this desk: the head (so that its key exists), a
// client when none was chosen, the currency of the rate sheet, one leg per room,
// each night priced by the rate calculator and rounded, the account, the deposit
// and the head again, so that the head is the last change-log row; then the
// audit line. All of it in one transaction: a failure leaves nothing behind.
// The calendar, when given, is patched with the new nights after the commit.
class BookingWriter {
public:
    BookingWriter(Database &db, const RateData &rates, const BBSetup &setup, const UserStruct &user);

    // Shows why and returns nothing when the request cannot be saved (no name,
    // no room, dates out of order, an unknown client). Database errors pass on.
    std::optional<NewBookingResult> save(const NewBookingRequest &request, Calendar *calendar = nullptr);

private:
    bool validate(const NewBookingRequest &request) const;

    Database &m_db;
    const RateData &m_rates;
    const BBSetup &m_setup;
    const UserStruct &m_user;
};

} // namespace fenlark
