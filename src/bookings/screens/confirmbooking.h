#pragma once

#include "bookings/newbooking.h"
#include "clients/screens/ucclientsearch.h"

#include <QDate>
#include <QDialog>

#include <vector>

class QLabel;
class QTableWidget;

namespace fenlark {

class RateData;
class Session;

// dlgBookConfirm: who a new booking is for, the rate and head count of each
// chosen room, and what the stay will cost before anything is saved; OK writes
// it through BookingWriter.
class ConfirmBooking : public QDialog, private IClientSearch {
    Q_OBJECT
public:
    ConfirmBooking(Session &session, const RateData &rates, const std::vector<qint32> &roomIds, QDate arrival, int nights,
                   QWidget *parent = nullptr);

    // What was saved; empty until OK went through.
    const NewBookingResult &saved() const { return m_result; }

    // The request as the screen holds it now.
    NewBookingRequest request() const;

    // The parts, for tests.
    ucClientSearch *clientSearch = nullptr;
    QTableWidget *gdRooms = nullptr;
    QLabel *lblTotal = nullptr;

    enum Column { ColRoomId, ColRoom, ColRate, ColAdults, ColChild1, ColChild2, ColStayTotal, ColumnCount };

public Q_SLOTS:
    void cmdOK();

private:
    // A double-click picks the client; only OK saves.
    void doubleClick() override {}
    void singleClick() override {}
    void addRoomRow(int row, qint32 roomId);
    void showQuote();

    Session &m_session;
    const RateData &m_rates;
    MessageStayQuestions m_questions;
    QDate m_arrival;
    QDate m_departure;
    NewBookingResult m_result;
};

} // namespace fenlark
