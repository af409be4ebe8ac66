#pragma once

#include "bookings/bookinglistmodels.h"

#include <QDate>
#include <QDialog>

#include <functional>

class QComboBox;
class QLineEdit;
class QPushButton;
class QTableView;

namespace fenlark {

class Session;

// dlgSearch: bookings found by a document number, a key, a reference, or parts
// of a name with the status. A double-click opens the booking; Move shows its
// arrival on the calendar.
class BookingSearchDialog : public QDialog {
    Q_OBJECT
public:
    // openBooking opens the editor on a room of a booking; showOnCalendar moves
    // the calendar so that it starts on the date given.
    BookingSearchDialog(Session &session, std::function<void(qint32, qint32)> openBooking,
                        std::function<void(QDate)> showOnCalendar, QWidget *parent = nullptr);

    BookingSearchCriteria criteria() const;

public Q_SLOTS:
    void cmdSearch();
    void cmdMove();

public:
    QLineEdit *txtInvoiceNo = nullptr;
    QLineEdit *txtProformaNo = nullptr;
    QLineEdit *txtBBBookingID = nullptr;
    QLineEdit *txtVMID = nullptr;
    QLineEdit *txtReference = nullptr;
    QLineEdit *txtFirstName = nullptr;
    QLineEdit *txtSurname = nullptr;
    QLineEdit *txtPhone = nullptr;
    QLineEdit *txtEmail = nullptr;
    QLineEdit *txtCompany = nullptr;
    QComboBox *cboStatus = nullptr;
    QTableView *gdBookings = nullptr;
    QPushButton *cmdMoveButton = nullptr;
    BookingSearchModel *model() const { return m_model; }

private:
    void openRow(int row);

    Session &m_session;
    std::function<void(qint32, qint32)> m_openBooking;
    std::function<void(QDate)> m_showOnCalendar;
    BookingSearchModel *m_model = nullptr;
};

} // namespace fenlark
