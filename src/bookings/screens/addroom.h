#pragma once

#include "bookings/newbooking.h"

#include <QDate>
#include <QDialog>

#include <functional>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace fenlark {

class RateData;
class Session;

// dlgAddRoom: another room for a booking that exists, with its rate, head count
// and guest (the booking's maker unless another client is chosen).
class AddRoom : public QDialog {
    Q_OBJECT
public:
    AddRoom(Session &session, const RateData &rates, qint32 bbBookingId, qint32 bbRoomId, QWidget *parent = nullptr);

    // An existing client for the new room (ClientDSearch unless replaced); 0 for none.
    std::function<qint32(QWidget *parent)> chooseClient;

    // Lists the rooms free for the whole stay and reads the guest; false (after
    // saying why) when no room is free or the booking or its maker is missing.
    bool initialise();
    // The room added; 0 until OK went through.
    qint32 newRoomId() const { return m_added; }

public Q_SLOTS:
    void cmdOK();
    void cmdClient();

public:
    QComboBox *cboRooms = nullptr;
    QComboBox *cboRateCode = nullptr;
    QLabel *outClient = nullptr;
    QLineEdit *txtnoadults = nullptr;
    QLineEdit *txtchild1 = nullptr;
    QLineEdit *txtChild2 = nullptr;

private:
    void fillRates();

    Session &m_session;
    const RateData &m_rates;
    MessageStayQuestions m_questions;
    qint32 m_bookingId;
    qint32 m_roomId;
    QDate m_from;
    QDate m_to;
    qint32 m_clientId = 0;
    qint32 m_added = 0;
};

} // namespace fenlark
