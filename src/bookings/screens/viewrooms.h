#pragma once

#include <QDialog>

class QPushButton;
class QTableWidget;

namespace fenlark {

class Database;

// The legs of one booking, to pick one of them by a double-click.
class ViewRooms : public QDialog {
    Q_OBJECT
public:
    ViewRooms(Database &db, qint32 bbBookingId, QWidget *parent = nullptr);

    // Fills the list; false (after saying why) when the booking has no leg to show.
    bool initialise();
    // The room of the leg picked; 0 when none was.
    qint32 selectedRoomid() const { return m_selected; }
    // Takes the leg of that row and closes.
    void pickRow(int row);

    QTableWidget *gdRooms = nullptr;
    QPushButton *cmdExit = nullptr;

private:
    Database &m_db;
    qint32 m_bookingId;
    qint32 m_selected = 0;
};

} // namespace fenlark
