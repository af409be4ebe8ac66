#pragma once

#include "clients/screens/ucclientsearch.h"

#include <QDate>
#include <QDialog>

#include <vector>

class QLabel;
class QTableWidget;

namespace fenlark {

class MainWindow;

// dlgBookConfirm: who a new booking is for, the rate and head count of each
// chosen room; OK writes it through BookingWriter.
class ConfirmBooking : public QDialog, private IClientSearch {
    Q_OBJECT
public:
    ConfirmBooking(MainWindow &frmMain, const std::vector<qint32> &roomIds, QDate arrival, int nights,
                   QWidget *parent = nullptr);

    // Shows the dialog modally; on a saved booking the calendar is redrawn and
    // the editor opens on its first room.
    static void initialise(MainWindow &frmMain, const std::vector<qint32> &roomIds, QDate arrival, int nights);

    qint32 BBBookingID() const { return m_bookingId; }
    qint32 firstRoomId() const { return m_firstRoomId; }

    // The parts, for tests.
    ucClientSearch *clientSearch = nullptr;
    QTableWidget *gdRooms = nullptr;

public Q_SLOTS:
    void cmdOK();

private:
    void doubleClick() override { cmdOK(); }
    void singleClick() override {}
    void addRoomRow(int row, qint32 roomId);

    MainWindow &m_main;
    QDate m_arrival;
    QDate m_departure;
    qint32 m_bookingId = 0;
    qint32 m_firstRoomId = 0;
};

} // namespace fenlark
