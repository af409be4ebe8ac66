#pragma once

#include "bookings/doublebookings.h"

#include <QDialog>

#include <functional>

class QLabel;
class QPushButton;
class QTableWidget;

namespace fenlark {

class Session;

// Opens the booking editor on one room of a booking.
using OpenBooking = std::function<void(qint32 bbBookingId, qint32 bbRoomId)>;

// dlgDoubleBook: the rooms sold twice, to be repaired before the desk is used.
// There is no way out but mending the bookings or leaving the program.
class DoubleBook : public QDialog {
    Q_OBJECT
public:
    DoubleBook(Session &session, OpenBooking viewBooking, QWidget *parent = nullptr);

    // Scans and, when rooms are sold twice, shows the list until all is clear or
    // the user leaves. onStart: say nothing when all is clear. True when the desk
    // may go on; false when the user chose to leave the program.
    bool initialise(bool onStart);
    // The menu's check and the start-up check in one: false means the program ends.
    static bool check(Session &session, const OpenBooking &viewBooking, bool onStart, QWidget *parent = nullptr);

    // Opens the booking editor on the booking and room of a row.
    void openRow(int row);
    void cmdRefresh();
    void cmdExit();


    QTableWidget *gdDouble = nullptr;
    QLabel *lblDoubleClickNarr = nullptr;
    QLabel *lblCheackAgainNarr = nullptr;

protected:
    void reject() override;

private:
    void fill();
    void reportUnreadable();

    Session &m_session;
    OpenBooking m_viewBooking;
    DoubleBookingScan m_scan;
    bool m_completed = false;
};

} // namespace fenlark
