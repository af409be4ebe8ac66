#pragma once

#include <QDate>
#include <QDialog>

class QListWidget;

namespace fenlark {

class Session;

// dlgChangeRooms: another room for one leg of a booking, among the rooms free
// for the dates on screen that no other leg of the booking holds. The change
// takes effect when the editor saves.
class ChangeRooms : public QDialog {
    Q_OBJECT
public:
    ChangeRooms(Session &session, qint32 bbBookingId, qint32 bbRoomId, QDate from, QDate to, QWidget *parent = nullptr);

    // Lists the rooms; false (after saying so) when there is none.
    bool initialise();
    // The room chosen; the leg's own room when none was.
    qint32 newRoomId() const { return m_chosen; }

public Q_SLOTS:
    void cmdOK();

public:
    QListWidget *lstRooms = nullptr;

private:
    Session &m_session;
    qint32 m_bookingId;
    qint32 m_roomId;
    QDate m_from;
    QDate m_to;
    qint32 m_chosen;
};

} // namespace fenlark
