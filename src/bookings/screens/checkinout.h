#pragma once

#include "bookings/checkinout.h"
#include "bookings/screens/doublebook.h"

#include <QDialog>

#include <functional>

class QPushButton;
class QTableWidget;

namespace fenlark {

class Session;

// dlgBookings: today's arrivals or departures; a double-click opens the booking.
class CheckInOut : public QDialog {
    Q_OBJECT
public:
    CheckInOut(Session &session, StayEnd end, OpenBooking viewBooking, QWidget *parent = nullptr);

    // The desk's Check-In and Check-Out buttons.
    static void initialise(Session &session, StayEnd end, const OpenBooking &viewBooking, QWidget *parent = nullptr);

    // Lists the legs of the day again.
    void fill();
    // Opens the booking editor on the leg of a row, then lists again.
    void openRow(int row);


    QTableWidget *gdBookings = nullptr;
    QPushButton *cmdExit = nullptr;

private:
    Session &m_session;
    OpenBooking m_viewBooking;
    StayEnd m_end;
};

} // namespace fenlark
