#pragma once

#include "bookings/bookingsave.h"
#include "bookings/cancellation.h"

#include <QDate>

#include <QDialog>

#include <functional>

class QCheckBox;
class QComboBox;
class QDateEdit;
class QDateTimeEdit;
class QFormLayout;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace fenlark {

class RateData;
class Session;

// dlgDetails: one leg of one booking. Edits stay on screen until cmdSave hands
// them to BookingSave; the linked screens refuse to open while dates or head
// counts are changed and unsaved.
class ViewBooking : public QDialog {
    Q_OBJECT
public:
    ViewBooking(Session &session, const RateData &rates, QWidget *parent = nullptr);

    // The choices the editor asks of other dialogs. Each opens its dialog
    // modally unless replaced, as tests do to answer without one.
    struct Choosers {
        // An existing client (ClientDSearch); 0 when none was chosen.
        std::function<qint32(QWidget *parent)> client;
        // A marketing source (SourceList) starting with the typed text; empty when none.
        std::function<QString(QWidget *parent, const QString &typed)> source;
        // A leg of the booking (ViewRooms) by its room; 0 when none was picked.
        std::function<qint32(QWidget *parent, qint32 bbBookingId)> room;
        // Another room for the leg over the dates on screen (ChangeRooms); the
        // leg's own room when none was chosen.
        std::function<qint32(QWidget *parent, qint32 bbBookingId, qint32 bbRoomId, QDate from, QDate to)> changeRoom;
        // A room added to the booking (AddRoom); 0 when none was.
        std::function<qint32(QWidget *parent, qint32 bbBookingId, qint32 bbRoomId)> addRoom;
        // The booking's nightly rates (ViewRates); true when they were saved.
        std::function<bool(QWidget *parent, qint32 bbBookingId)> rates;
        // The client editor (ViewClient) on a client: the key of the client it
        // saved (another one when the change made a new client), 0 when nothing was saved.
        std::function<qint32(QWidget *parent, qint32 clientId)> editClient;
    };
    Choosers choosers;

    // The money screens the editor opens, modally unless replaced, as tests do.
    struct MoneyScreens {
        // The account screen on an account.
        std::function<void(QWidget *parent, qint32 accountId)> account;
        // The extras of one room (leg).
        std::function<void(QWidget *parent, qint32 bbGuestId)> extras;
    };
    MoneyScreens moneyScreens;

    // Loads the leg and shows the dialog modally; says why and shows nothing
    // when the leg cannot be read.
    static void initialise(Session &session, const RateData &rates, qint32 bbBookingId, qint32 bbRoomId,
                           QWidget *parent = nullptr);
    // Loads the leg into the screen; false (after saying why) when it is missing.
    bool load(qint32 bbBookingId, qint32 bbRoomId);

    bool isDirty() const { return m_dirty; }
    const BookingEdit &edit() const { return m_edit; }

    // The two questions the linked screens ask first.
    bool datesChanged() const;
    bool headCountChanged() const;
    // True when the linked screen may open; otherwise says why.
    bool guard() const;

public Q_SLOTS:
    bool cmdSave();
    void cmdSplit();
    // dlgPrintChoose: a letter or the summary of this booking.
    void cmdPrint();
    void cmdChangeRooms();
    void cmdViewRooms();
    void cmdAddRoom();
    // Cancels the whole booking, or only this room, and closes.
    void cmdDelete();
    void cmdDeleteRoom();
    void cmdViewRates();
    void cmdCalcDeposit();
    void cmdExit();
    void cmdMadeBy();
    void cmdGuest1();
    void cmdGuest2();
    void cmdMadeByChange();
    void cmdGuest1Change();
    void cmdGuest2Change();
    void cmdGuest2del();
    void cmdMadeByEmail();
    void cmdGuest1Email();
    void cmdGuest2Email();
    void cmdSources();
    void cmdAccount();
    void cmdGuestAccount();
    void cmdExtra();

    // The parts, for tests.
public:
    QComboBox *cboStatus = nullptr;
    QDateTimeEdit *dpReserved = nullptr;
    QDateEdit *dpFrom = nullptr;
    QDateEdit *dpTo = nullptr;
    QLabel *lblNoNights = nullptr;
    QLabel *lblRoomName = nullptr;
    QLabel *lblSingleMulti = nullptr;
    QComboBox *cboRateCode = nullptr;
    QLineEdit *txtnoadults = nullptr;
    QLineEdit *txtchild1 = nullptr;
    QLineEdit *txtChild2 = nullptr;
    QPlainTextEdit *txtNotes = nullptr;
    QLineEdit *txtSource = nullptr;
    QLineEdit *txtAgentComm = nullptr;
    QLineEdit *txtReference = nullptr;
    QLineEdit *txtDeposit = nullptr;
    QCheckBox *ckCheckedIn = nullptr;
    QCheckBox *ckCheckedOut = nullptr;
    QLabel *lblTotal = nullptr;

private:
    void build();
    void statusChanged(int index);
    void fillRates();
    void getNoNights();
    void refreshTotals();
    // Reads the booking's and the leg's accounts again, with what shows them.
    void refreshAccounts();
    // Takes the screen into the edit; false (after saying why) when an amount is not one.
    bool readScreen();
    void showNames();
    // Puts a client chosen through the chooser in slot; false when none or the same was chosen.
    bool changeClient(qint32 &slot);
    // Opens the client editor on the client in slot; a client it made instead takes the slot.
    void viewClient(qint32 &slot);
    void emailToClipboard(qint32 clientId);
    void cancelled(const Result<CancelOutcome> &outcome);
    void sourceChanged();
    void setDirty() { if (!m_loading) m_dirty = true; }
    QPushButton *button(const QString &name, const QString &text, bool enabled);

    Session &m_session;
    const RateData &m_rates;
    MessageSaveQuestions m_questions;
    MessageCancelQuestions m_cancelQuestions;
    BookingEdit m_edit;
    qint32 m_guestId = 0;
    int m_statusIndex = 0;
    bool m_dirty = false;
    bool m_loading = false;
    QFormLayout *m_bookingForm = nullptr;
    QLabel *m_bookingNo = nullptr;
    QLabel *m_serverNo = nullptr;
    QLabel *m_bookingDate = nullptr;
    QLabel *m_bookingType = nullptr;
    QLabel *outMadeBy = nullptr;
    QLabel *outGuest = nullptr;
    QLabel *outGuest2 = nullptr;
    QLabel *outInvoiceTo = nullptr;
    QLabel *lblDifferentAccount = nullptr;
    QPushButton *m_sources = nullptr;
    QPushButton *m_madeByView = nullptr;
    QPushButton *m_guest1View = nullptr;
    QPushButton *m_guest2View = nullptr;
    QPushButton *m_guest2Del = nullptr;
    QPushButton *m_guest2Email = nullptr;
};

} // namespace fenlark
