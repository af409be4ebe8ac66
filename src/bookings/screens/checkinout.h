#pragma once

#include "bookings/checkinout.h"

#include <QDialog>

#include <functional>

class QPushButton;
class QTableWidget;

namespace fenlark {

class MainWindow;

// dlgBookings: today's arrivals or departures; a double-click opens the booking.
class CheckInOut : public QDialog {
    Q_OBJECT
public:
    CheckInOut(MainWindow &frmMain, StayEnd end, QWidget *parent = nullptr);

    // The desk's Check-In (mode 1) and Check-Out buttons.
    static void initialise(MainWindow &frmMain, int mode);

    // Lists the legs of the day again.
    void fill();
    // Opens the booking editor on the leg of a row, then lists again.
    void openRow(int row);

    // Opens the booking editor; tests answer without the modal editor.
    std::function<void(MainWindow &, qint32 bbBookingId, qint32 bbRoomId)> viewBooking;

    QTableWidget *gdBookings = nullptr;
    QPushButton *cmdExit = nullptr;

private:
    MainWindow &m_main;
    StayEnd m_end;
};

} // namespace fenlark
