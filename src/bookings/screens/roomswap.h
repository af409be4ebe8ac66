#pragma once

#include "bookings/roommoves.h"

#include <QDialog>

#include <array>

class QDateEdit;
class QLabel;
class QListWidget;
class QPushButton;

namespace fenlark {

class Session;

// dlgRoomSwap: the rooms staying on a date; two clicks fill the two slots in
// turn, and Swap exchanges their guests once the pair is one that can swap.
class RoomSwapDialog : public QDialog {
    Q_OBJECT
public:
    explicit RoomSwapDialog(Session &session, QWidget *parent = nullptr);

    // Lists the rooms staying on the date and empties both slots.
    void fill();
    // A click on a line: it goes into the next slot.
    void pick(int row);

public Q_SLOTS:
    void cmdSwap();

public:
    QDateEdit *dpDate = nullptr;
    QListWidget *lstRooms = nullptr;
    QLabel *lblRoom1 = nullptr;
    QLabel *lblRoom2 = nullptr;
    QLabel *lblMessage = nullptr;
    QPushButton *cmdSwapButton = nullptr;

private:
    void check();

    Session &m_session;
    std::vector<StayingLeg> m_legs;
    std::array<qint32, 2> m_slots{0, 0};
    int m_next = 0;
};

} // namespace fenlark
