#include "bookings/screens/viewbooking.h"

#include "accounts/accountrecords.h"
#include "accounts/extraqueries.h"
#include "accounts/screens/accountform.h"
#include "accounts/screens/extrasdialogs.h"
#include "bookings/bookingcodes.h"
#include "bookings/bookingdetails.h"
#include "bookings/bookingrecords.h"
#include "bookings/newbooking.h"
#include "bookings/screens/addroom.h"
#include "bookings/screens/changerooms.h"
#include "bookings/screens/viewrates.h"
#include "bookings/screens/viewrooms.h"
#include "bookings/staydates.h"
#include "clients/clientrecords.h"
#include "clients/screens/clientsearchdialogs.h"
#include "clients/screens/sourcelist.h"
#include "clients/screens/viewclient.h"
#include "clients/sources.h"
#include "rates/ratedata.h"
#include "rates/ratescalculator.h"
#include "rates/roomrates.h"
#include "reports/screens/printchoose.h"
#include "shell/messages.h"
#include "shell/money.h"
#include "shell/screens/guard.h"
#include "shell/session.h"
#include "shell/strings.h"
#include "shell/textformat.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDateEdit>
#include <QFormLayout>
#include <QGroupBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

namespace fenlark {

namespace {

QString clientNameOf(Database &db, qint32 clientId)
{
    Client client;
    return clientId != 0 && client.fetch(db, clientId) ? client.FullName() : QString();
}

// A box for a number: whole heads take digits only, amounts digits, comma and full stop.
QLineEdit *numberBox(QWidget *parent, const QString &name, bool whole = false)
{
    auto *box = new QLineEdit(parent);
    box->setObjectName(name);
    box->setValidator(new QRegularExpressionValidator(QRegularExpression(whole ? QStringLiteral("[0-9]{0,3}")
                                                                               : QStringLiteral("[0-9.,]*")),
                                                      box));
    return box;
}

qint16 countOf(const QLineEdit *box)
{
    return static_cast<qint16>(std::clamp(box->text().toInt(), 0, 999));
}

} // namespace

ViewBooking::ViewBooking(Session &session, const RateData &rates, QWidget *parent)
    : QDialog(parent), m_session(session), m_rates(rates)
{
    setObjectName(QStringLiteral("dlgDetails"));
    setWindowTitle(getString(5860, QStringLiteral("Booking Details")));
    Database &db = session.db();
    choosers.client = [&db](QWidget *parent) {
        ClientDSearch dialog(db, parent);
        dialog.exec();
        return dialog.BBClientID();
    };
    choosers.source = [&db](QWidget *parent, const QString &typed) {
        SourceList dialog(db, typed, parent);
        dialog.exec();
        return dialog.getSource();
    };
    choosers.editClient = [&session](QWidget *parent, qint32 clientId) {
        ViewClient editor(session, {}, parent);
        editor.initialise(clientId);
        return editor.ChangesMade() ? editor.NewClientID() : 0;
    };
    choosers.room = [&db](QWidget *parent, qint32 bbBookingId) {
        ViewRooms dialog(db, bbBookingId, parent);
        if (!dialog.initialise())
            return 0;
        dialog.exec();
        return dialog.selectedRoomid();
    };
    choosers.changeRoom = [&session](QWidget *parent, qint32 bbBookingId, qint32 bbRoomId, QDate from, QDate to) {
        ChangeRooms dialog(session, bbBookingId, bbRoomId, from, to, parent);
        if (!dialog.initialise())
            return bbRoomId;
        dialog.exec();
        return dialog.newRoomId();
    };
    choosers.addRoom = [&session, &rates](QWidget *parent, qint32 bbBookingId, qint32 bbRoomId) {
        AddRoom dialog(session, rates, bbBookingId, bbRoomId, parent);
        if (!dialog.initialise())
            return 0;
        dialog.exec();
        return dialog.newRoomId();
    };
    choosers.rates = [&session, &rates](QWidget *parent, qint32 bbBookingId) {
        ViewRates dialog(session, rates, bbBookingId, parent);
        if (!dialog.initialise())
            return false;
        dialog.exec();
        return dialog.ok();
    };
    moneyScreens.account = [&session](QWidget *parent, qint32 accountId) { AccountForm::initialise(session, accountId, parent); };
    moneyScreens.extras = [&session](QWidget *parent, qint32 guestId) { Extras::initialise(session, guestId, parent); };
    build();
}

QPushButton *ViewBooking::button(const QString &name, const QString &text, bool enabled)
{
    auto *b = new QPushButton(text, this);
    b->setObjectName(name);
    b->setEnabled(enabled);
    return b;
}

void ViewBooking::build()
{
    auto *layout = new QHBoxLayout(this);

    auto *booking = new QGroupBox(getString(5861, QStringLiteral("Booking Information")), this);
    booking->setObjectName(QStringLiteral("frmBookingDetails"));
    auto *bf = new QFormLayout(booking);
    m_bookingForm = bf;
    cboStatus = new QComboBox(booking);
    cboStatus->setObjectName(QStringLiteral("cboStatus"));
    bf->addRow(getString(5862, QStringLiteral("Status")), cboStatus);
    dpReserved = new QDateTimeEdit(booking);
    dpReserved->setObjectName(QStringLiteral("dpReserved"));
    dpReserved->setDisplayFormat(QStringLiteral("dd/MM/yyyy hh:mm"));
    bf->addRow(getString(5863, QStringLiteral("Reserved until")), dpReserved);
    dpFrom = new QDateEdit(booking);
    dpFrom->setObjectName(QStringLiteral("dpFrom"));
    dpFrom->setCalendarPopup(true);
    dpTo = new QDateEdit(booking);
    dpTo->setObjectName(QStringLiteral("dpTo"));
    dpTo->setCalendarPopup(true);
    bf->addRow(getString(5864, QStringLiteral("Arriving")), dpFrom);
    bf->addRow(getString(5865, QStringLiteral("Leaving")), dpTo);
    lblNoNights = new QLabel(booking);
    lblNoNights->setObjectName(QStringLiteral("lblNoNights"));
    bf->addRow(QString(), lblNoNights);
    outMadeBy = new QLabel(booking);
    outMadeBy->setObjectName(QStringLiteral("outMadeBy"));
    auto *madeBy = new QHBoxLayout;
    madeBy->addWidget(outMadeBy, 1);
    m_madeByView = button(QStringLiteral("cmdMadeBy"), getString(5866, QStringLiteral("View")), false);
    madeBy->addWidget(m_madeByView);
    auto *madeByChange = button(QStringLiteral("cmdMadeByChange"), getString(5867, QStringLiteral("Change")), true);
    auto *madeByEmail = button(QStringLiteral("cmdMadeByEmail"), getString(5868, QStringLiteral("E-mail")), true);
    madeBy->addWidget(madeByChange);
    madeBy->addWidget(madeByEmail);
    bf->addRow(getString(5869, QStringLiteral("Made by")), madeBy);
    lblRoomName = new QLabel(booking);
    lblRoomName->setObjectName(QStringLiteral("lblRoomName"));
    auto *rooms = new QHBoxLayout;
    rooms->addWidget(lblRoomName, 1);
    auto *changeRooms = button(QStringLiteral("cmdChangeRooms"), getString(5870, QStringLiteral("Change &Room")), true);
    auto *viewRooms = button(QStringLiteral("cmdViewRooms"), getString(5871, QStringLiteral("View all rooms")), true);
    rooms->addWidget(changeRooms);
    rooms->addWidget(viewRooms);
    auto *addRoom = button(QStringLiteral("cmdAddRoom"), getString(5872, QStringLiteral("Add Room")), true);
    rooms->addWidget(addRoom);
    bf->addRow(getString(5873, QStringLiteral("Room")), rooms);
    lblSingleMulti = new QLabel(booking);
    lblSingleMulti->setObjectName(QStringLiteral("lblSingleMulti"));
    bf->addRow(QString(), lblSingleMulti);
    cboRateCode = new QComboBox(booking);
    cboRateCode->setObjectName(QStringLiteral("cboRateCode"));
    bf->addRow(getString(5874, QStringLiteral("Rate")), cboRateCode);
    txtnoadults = numberBox(booking, QStringLiteral("txtnoadults"), true);
    txtchild1 = numberBox(booking, QStringLiteral("txtchild1"), true);
    txtChild2 = numberBox(booking, QStringLiteral("txtChild2"), true);
    ChildPolicy policy;
    policy.fetchChildPolicy(m_session.db());
    bf->addRow(getString(5875, QStringLiteral("Adults")), txtnoadults);
    const QString children = getString(5876, QStringLiteral("Children"));
    bf->addRow(children + QLatin1Char(' ') + policy.label1, txtchild1);
    bf->addRow(children + QLatin1Char(' ') + policy.label2, txtChild2);
    txtchild1->setVisible(policy.ChildAge1 != 0);
    bf->labelForField(txtchild1)->setVisible(policy.ChildAge1 != 0);
    txtChild2->setVisible(policy.ChildAge2 != 0);
    bf->labelForField(txtChild2)->setVisible(policy.ChildAge2 != 0);
    txtNotes = new QPlainTextEdit(booking);
    txtNotes->setObjectName(QStringLiteral("txtNotes"));
    txtNotes->setMaximumHeight(70);
    bf->addRow(getString(5877, QStringLiteral("Notes")), txtNotes);
    txtSource = new QLineEdit(booking);
    txtSource->setObjectName(QStringLiteral("txtSource"));
    auto *source = new QHBoxLayout;
    source->addWidget(txtSource, 1);
    m_sources = button(QStringLiteral("cmdSources"), QStringLiteral("..."), true);
    source->addWidget(m_sources);
    bf->addRow(getString(5878, QStringLiteral("Source")), source);
    txtAgentComm = numberBox(booking, QStringLiteral("txtAgentComm"));
    bf->addRow(getString(5879, QStringLiteral("Agent commission %")), txtAgentComm);
    m_bookingNo = new QLabel(booking);
    m_bookingNo->setObjectName(QStringLiteral("lblBookingID"));
    m_serverNo = new QLabel(booking);
    m_serverNo->setObjectName(QStringLiteral("lblServerNo"));
    m_bookingDate = new QLabel(booking);
    m_bookingType = new QLabel(booking);
    auto *numbers = new QHBoxLayout;
    numbers->addWidget(m_bookingNo, 1);
    numbers->addWidget(new QLabel(getString(5989, QStringLiteral("Server No.")), booking));
    numbers->addWidget(m_serverNo, 1);
    bf->addRow(getString(5965, QStringLiteral("Booking ID")), numbers);
    bf->addRow(getString(5881, QStringLiteral("Booked on")), m_bookingDate);
    bf->addRow(getString(5882, QStringLiteral("Booking type")), m_bookingType);
    auto *bookingButtons = new QHBoxLayout;
    auto *split = button(QStringLiteral("cmdSplit"), getString(5883, QStringLiteral("Split &Booking")), true);
    bookingButtons->addWidget(split);
    auto *cancelBooking = button(QStringLiteral("cmdDelete"), getString(6590, QStringLiteral("Cancel B&ooking")), true);
    auto *cancelRoom = button(QStringLiteral("cmdDeleteRoom"), getString(5884, QStringLiteral("Cancel &Room")), true);
    bookingButtons->addWidget(cancelBooking);
    bookingButtons->addWidget(cancelRoom);
    auto *print = button(QStringLiteral("cmdPrint"), getString(5885, QStringLiteral("&Print")), true);
    bookingButtons->addWidget(print);
    bf->addRow(bookingButtons);
    layout->addWidget(booking);

    auto *right = new QVBoxLayout;
    auto *guest = new QGroupBox(getString(5886, QStringLiteral("Guest Information")), this);
    guest->setObjectName(QStringLiteral("frmGuestInformation"));
    auto *gf = new QFormLayout(guest);
    outGuest = new QLabel(guest);
    outGuest->setObjectName(QStringLiteral("outGuest"));
    gf->addRow(getString(5887, QStringLiteral("Guest")), outGuest);
    auto *guestButtons = new QHBoxLayout;
    m_guest1View = button(QStringLiteral("cmdGuest1"), getString(5866, QStringLiteral("View")), false);
    guestButtons->addWidget(m_guest1View);
    auto *guest1Change = button(QStringLiteral("cmdGuest1Change"), getString(5867, QStringLiteral("Change")), true);
    auto *guest1Email = button(QStringLiteral("cmdGuest1Email"), getString(5868, QStringLiteral("E-mail")), true);
    guestButtons->addWidget(guest1Change);
    guestButtons->addWidget(guest1Email);
    gf->addRow(guestButtons);
    outGuest2 = new QLabel(guest);
    outGuest2->setObjectName(QStringLiteral("outGuest2"));
    gf->addRow(getString(5888, QStringLiteral("Second guest")), outGuest2);
    auto *guest2Buttons = new QHBoxLayout;
    m_guest2View = button(QStringLiteral("cmdGuest2"), getString(5866, QStringLiteral("View")), false);
    guest2Buttons->addWidget(m_guest2View);
    auto *guest2Change = button(QStringLiteral("cmdGuest2Change"), getString(5867, QStringLiteral("Change")), true);
    m_guest2Del = button(QStringLiteral("cmdGuest2del"), getString(5889, QStringLiteral("Remove")), false);
    m_guest2Email = button(QStringLiteral("cmdGuest2Email"), getString(5868, QStringLiteral("E-mail")), false);
    guest2Buttons->addWidget(guest2Change);
    guest2Buttons->addWidget(m_guest2Del);
    guest2Buttons->addWidget(m_guest2Email);
    gf->addRow(guest2Buttons);
    ckCheckedIn = new QCheckBox(getString(5890, QStringLiteral("Checked in")), guest);
    ckCheckedIn->setObjectName(QStringLiteral("ckCheckedIn"));
    ckCheckedOut = new QCheckBox(getString(5891, QStringLiteral("Checked out")), guest);
    ckCheckedOut->setObjectName(QStringLiteral("ckCheckedOut"));
    gf->addRow(ckCheckedIn, ckCheckedOut);
    txtReference = new QLineEdit(guest);
    txtReference->setObjectName(QStringLiteral("txtReference"));
    gf->addRow(getString(5892, QStringLiteral("Reference")), txtReference);
    auto *extras = new QHBoxLayout;
    auto *extra = button(QStringLiteral("cmdExtra"), getString(5893, QStringLiteral("Add extra")), true);
    auto *guestAccount = button(QStringLiteral("cmdGuestAccount"), getString(5894, QStringLiteral("Room account")), true);
    extras->addWidget(extra);
    extras->addWidget(guestAccount);
    gf->addRow(extras);
    lblDifferentAccount = new QLabel(getString(5895, QStringLiteral("This account is different from the booking account.")), guest);
    lblDifferentAccount->setObjectName(QStringLiteral("lblDifferentAccount"));
    gf->addRow(lblDifferentAccount);
    right->addWidget(guest);

    auto *account = new QGroupBox(getString(5896, QStringLiteral("Account Information")), this);
    account->setObjectName(QStringLiteral("frmAccountInformation"));
    auto *af = new QFormLayout(account);
    outInvoiceTo = new QLabel(account);
    outInvoiceTo->setObjectName(QStringLiteral("outInvoiceTo"));
    af->addRow(getString(5897, QStringLiteral("Invoice to")), outInvoiceTo);
    lblTotal = new QLabel(account);
    lblTotal->setObjectName(QStringLiteral("lblTotal"));
    af->addRow(getString(5898, QStringLiteral("Accommodation")), lblTotal);
    txtDeposit = numberBox(account, QStringLiteral("txtDeposit"));
    auto *deposit = new QHBoxLayout;
    deposit->addWidget(txtDeposit, 1);
    auto *calcDeposit = button(QStringLiteral("cmdCalcDeposit"), getString(5899, QStringLiteral("Calc Deposit")), true);
    deposit->addWidget(calcDeposit);
    af->addRow(getString(5900, QStringLiteral("Deposit")), deposit);
    auto *accountButtons = new QHBoxLayout;
    auto *accountButton = button(QStringLiteral("cmdAccount"), getString(5901, QStringLiteral("Account")), true);
    accountButtons->addWidget(accountButton);
    auto *viewRates = button(QStringLiteral("cmdViewRates"), getString(5902, QStringLiteral("&View Rates")), true);
    accountButtons->addWidget(viewRates);
    af->addRow(accountButtons);
    right->addWidget(account);

    auto *save = button(QStringLiteral("cmdSave"), getString(5903, QStringLiteral("Save Changes")), true);
    auto *exit = button(QStringLiteral("cmdExit"), getString(5904, QStringLiteral("Close")), true);
    auto *bottom = new QHBoxLayout;
    bottom->addStretch();
    bottom->addWidget(save);
    bottom->addWidget(exit);
    right->addStretch();
    right->addLayout(bottom);
    layout->addLayout(right);

    connect(save, &QPushButton::clicked, this, guarded(this, &ViewBooking::cmdSave));
    connect(extra, &QPushButton::clicked, this, guarded(this, &ViewBooking::cmdExtra));
    connect(guestAccount, &QPushButton::clicked, this, guarded(this, &ViewBooking::cmdGuestAccount));
    connect(accountButton, &QPushButton::clicked, this, guarded(this, &ViewBooking::cmdAccount));
    connect(exit, &QPushButton::clicked, this, guarded(this, &ViewBooking::cmdExit));
    connect(split, &QPushButton::clicked, this, guarded(this, &ViewBooking::cmdSplit));
    connect(print, &QPushButton::clicked, this, guarded(this, &ViewBooking::cmdPrint));
    connect(changeRooms, &QPushButton::clicked, this, guarded(this, &ViewBooking::cmdChangeRooms));
    connect(viewRooms, &QPushButton::clicked, this, guarded(this, &ViewBooking::cmdViewRooms));
    connect(addRoom, &QPushButton::clicked, this, guarded(this, &ViewBooking::cmdAddRoom));
    connect(cancelBooking, &QPushButton::clicked, this, guarded(this, &ViewBooking::cmdDelete));
    connect(cancelRoom, &QPushButton::clicked, this, guarded(this, &ViewBooking::cmdDeleteRoom));
    connect(viewRates, &QPushButton::clicked, this, guarded(this, &ViewBooking::cmdViewRates));
    connect(calcDeposit, &QPushButton::clicked, this, guarded(this, &ViewBooking::cmdCalcDeposit));
    connect(m_madeByView, &QPushButton::clicked, this, guarded(this, &ViewBooking::cmdMadeBy));
    connect(m_guest1View, &QPushButton::clicked, this, guarded(this, &ViewBooking::cmdGuest1));
    connect(m_guest2View, &QPushButton::clicked, this, guarded(this, &ViewBooking::cmdGuest2));
    connect(madeByChange, &QPushButton::clicked, this, guarded(this, &ViewBooking::cmdMadeByChange));
    connect(guest1Change, &QPushButton::clicked, this, guarded(this, &ViewBooking::cmdGuest1Change));
    connect(guest2Change, &QPushButton::clicked, this, guarded(this, &ViewBooking::cmdGuest2Change));
    connect(m_guest2Del, &QPushButton::clicked, this, guarded(this, &ViewBooking::cmdGuest2del));
    connect(madeByEmail, &QPushButton::clicked, this, guarded(this, &ViewBooking::cmdMadeByEmail));
    connect(guest1Email, &QPushButton::clicked, this, guarded(this, &ViewBooking::cmdGuest1Email));
    connect(m_guest2Email, &QPushButton::clicked, this, guarded(this, &ViewBooking::cmdGuest2Email));
    connect(m_sources, &QPushButton::clicked, this, guarded(this, &ViewBooking::cmdSources));
    connect(txtSource, &QLineEdit::textChanged, this, guarded(this, &ViewBooking::sourceChanged));
    connect(cboStatus, &QComboBox::currentIndexChanged, this, guarded(this, &ViewBooking::statusChanged));
    connect(dpFrom, &QDateEdit::dateChanged, this, guarded([this] { setDirty(); getNoNights(); }));
    connect(dpTo, &QDateEdit::dateChanged, this, guarded([this] { setDirty(); getNoNights(); }));
    for (QLineEdit *box : {txtnoadults, txtchild1, txtChild2, txtDeposit, txtAgentComm, txtSource, txtReference})
        connect(box, &QLineEdit::textEdited, this, guarded([this] { setDirty(); }));
    connect(cboRateCode, &QComboBox::currentIndexChanged, this, guarded([this] { setDirty(); }));
    connect(txtNotes, &QPlainTextEdit::textChanged, this, guarded([this] { setDirty(); }));
    connect(dpReserved, &QDateTimeEdit::dateTimeChanged, this, guarded([this] { setDirty(); }));
    // A room is checked in or checked out, never both: ticking one clears the other.
    connect(ckCheckedIn, &QCheckBox::toggled, this, guarded([this](bool on) {
        if (on)
            ckCheckedOut->setChecked(false);
        setDirty();
    }));
    connect(ckCheckedOut, &QCheckBox::toggled, this, guarded([this](bool on) {
        if (on)
            ckCheckedIn->setChecked(false);
        setDirty();
    }));
}

bool ViewBooking::load(qint32 bbBookingId, qint32 bbRoomId)
{
    Database &db = m_session.db();
    ensureBookingAccount(db, bbBookingId);
    const std::optional<BookingEdit> edit = loadBookingEdit(db, bbBookingId, bbRoomId);
    Booking head;
    if (!edit || !head.fetch(db, bbBookingId)) {
        messages::show(Refusal(5827, QStringLiteral("Error: Could not fetch booking details. Call veldmoor (021 555 0108)"),
                               5828, QStringLiteral("Could not find booking details")));
        return false;
    }
    m_loading = true;
    m_edit = *edit;
    Guest leg;
    leg.fetchLeg(db, bbBookingId, bbRoomId);
    m_guestId = leg.BBGuestID;
    // Extras that came from the server without an account get one now.
    Extra::updateExtraWithAccount(db, bbBookingId, m_edit.bookingAccountId, m_guestId, m_edit.legAccountId);

    cboStatus->clear();
    for (const StatusEntry &status : statusList(db))
        cboStatus->addItem(status.name, status.code);
    // A status this desk does not know (from a newer server) is kept as it is.
    if (cboStatus->findData(m_edit.status) < 0)
        cboStatus->addItem(m_edit.status, m_edit.status);
    m_statusIndex = std::max(0, cboStatus->findData(m_edit.status));
    cboStatus->setCurrentIndex(m_statusIndex);
    const bool hold = statusHasHold(m_edit.status);
    dpReserved->setDateTime(hold ? m_edit.reservedUntil : QDateTime(QDate::currentDate(), QTime(0, 0)));
    m_bookingForm->setRowVisible(dpReserved, hold);
    dpFrom->setDate(m_edit.fromDate);
    dpTo->setDate(m_edit.toDate);
    lblRoomName->setText(m_session.property().RoomName(m_edit.roomId));
    const bool multi = Guest::legsOf(db, bbBookingId).size() > 1;
    lblSingleMulti->setText(multi ? getString(5905, QStringLiteral("* Multi Room Booking"))
                                  : getString(5906, QStringLiteral("* Single Room Booking")));
    lblSingleMulti->setStyleSheet(multi ? QStringLiteral("color: rgb(140, 0, 0);") : QString());
    txtnoadults->setText(QString::number(m_edit.adults));
    txtchild1->setText(QString::number(m_edit.child1));
    txtChild2->setText(QString::number(m_edit.child2));
    fillRates();
    ckCheckedIn->setChecked(m_edit.checkedIn);
    ckCheckedOut->setChecked(m_edit.checkedOut);
    m_bookingNo->setText(QString::number(head.BBBookingID));
    m_serverNo->setText(head.BookingID == 0 ? getString(5990, QStringLiteral("not yet sent")) : QString::number(head.BookingID));
    m_bookingDate->setText(head.BookingDate.toString(QStringLiteral("dd/MM/yyyy hh:mm")));
    m_bookingType->setText(bookingTypeName(head.BookingType));
    txtSource->setText(m_edit.source);
    const bool fixedSource = head.BookingType == bookingtype::Online && m_edit.source != QLatin1String("WebView");
    txtSource->setReadOnly(fixedSource);
    m_sources->setEnabled(!fixedSource);
    txtAgentComm->setText(formatAmount(m_edit.agentComm));
    txtDeposit->setText(formatAmount(m_edit.deposit));
    txtNotes->setPlainText(m_edit.notes);
    txtReference->setText(m_edit.reference);
    showNames();
    refreshAccounts();
    getNoNights();
    refreshTotals();
    m_dirty = false;
    m_loading = false;
    return true;
}

void ViewBooking::fillRates()
{
    const bool wasLoading = m_loading;
    m_loading = true;
    cboRateCode->clear();
    cboRateCode->addItem(getString(5907, QStringLiteral("Manual Rates")), 0);
    for (const OfferedRate &rate : offeredRates(m_rates, dpFrom->date(), dpTo->date(), m_edit.roomId))
        cboRateCode->addItem(rate.name, rate.BBRateID);
    const int at = cboRateCode->findData(m_edit.BBRateID);
    if (at < 0 && m_edit.BBRateID != 0)
        cboRateCode->addItem(getRateName(m_rates, m_edit.BBRateID), m_edit.BBRateID);
    cboRateCode->setCurrentIndex(std::max(0, cboRateCode->findData(m_edit.BBRateID)));
    m_loading = wasLoading;
}

void ViewBooking::getNoNights()
{
    const int nights = nightCount(dpFrom->date(), dpTo->date());
    lblNoNights->setText(QString::number(nights)
                         + (nights == 1 ? getString(5908, QStringLiteral(" night")) : getString(5909, QStringLiteral(" nights"))));
}

void ViewBooking::refreshTotals()
{
    double total = 0;
    if (const auto details = loadBookingDetails(m_session.db(), m_edit.BBBookingID))
        for (const LegDetails &leg : details->legs)
            for (const DailyRate &night : leg.nights)
                total += night.RoomRate;
    lblTotal->setText(formatAmount(roundMoney(total)));
}

void ViewBooking::refreshAccounts()
{
    Database &db = m_session.db();
    Booking head;
    head.fetch(db, m_edit.BBBookingID);
    Guest leg;
    leg.fetch(db, m_guestId);
    // The money screens may have moved the booking or the room to another account.
    m_edit.bookingAccountId = head.BBAccountID;
    m_edit.legAccountId = leg.BBAccountID == 0 ? head.BBAccountID : leg.BBAccountID;
    lblDifferentAccount->setVisible(m_edit.legAccountId != m_edit.bookingAccountId);
    Account account;
    const bool hasAccount = account.fetch(db, m_edit.bookingAccountId);
    outInvoiceTo->setText(hasAccount ? clientNameOf(db, account.InvoiceTo) : outMadeBy->text());
}

void ViewBooking::cmdAccount()
{
    if (!guard())
        return;
    moneyScreens.account(this, m_edit.bookingAccountId);
    refreshAccounts();
    refreshTotals();
    Database &db = m_session.db();
    const auto selectStatus = [this](const char *code) {
        const int at = cboStatus->findData(QString::fromLatin1(code));
        if (at >= 0)
            cboStatus->setCurrentIndex(at);
        setDirty();
    };
    if (roundMoney(Account::getBalanceOnAccount(db, m_edit.bookingAccountId)) == 0.0
        && cboStatus->currentData().toString() != QLatin1String("S")
        && messages::ask(6636, QStringLiteral("This account has been settled in full. Would you like to mark this booking as 'Paid'?"), 6637,
                         QStringLiteral("Mark booking as paid?")))
        selectStatus("S");
    const QString status = cboStatus->currentData().toString();
    if ((status == QLatin1String("W") || status == QLatin1String("R") || status == QLatin1String("P"))
        && Account::hasPayments(db, m_edit.bookingAccountId)
        && messages::ask(6638, QStringLiteral("This account contains a payment. Would you like to mark this booking as 'Confirmed'?"), 6639,
                         QStringLiteral("Mark booking as confirmed?")))
        selectStatus("C");
}

void ViewBooking::cmdGuestAccount()
{
    if (!guard())
        return;
    moneyScreens.account(this, m_edit.legAccountId);
    refreshAccounts();
    refreshTotals();
}

void ViewBooking::cmdExtra()
{
    if (cboStatus->currentData().toString() == QLatin1String("R")) {
        messages::inform(6655, QStringLiteral("Extras are not allowed on bookings that have status 'Reserved'. Change the status of the "
                                              "booking if this is no longer required."),
                         6693, QStringLiteral("Cannot add extra"));
        return;
    }
    moneyScreens.extras(this, m_guestId);
    refreshAccounts();
    refreshTotals();
}

void ViewBooking::statusChanged(int index)
{
    if (m_loading)
        return;
    const QString oldCode = cboStatus->itemData(m_statusIndex).toString();
    const QString newCode = cboStatus->itemData(index).toString();
    const auto goBack = [this] {
        m_loading = true;
        cboStatus->setCurrentIndex(m_statusIndex);
        m_loading = false;
    };
    if (newCode == QLatin1String("R") && oldCode != QLatin1String("R")) {
        const UserStruct &user = m_session.getUser();
        if (user.UserID > 0 && !isAllowed(user, SecurityAction::CancelBooking)) {
            messages::critical(5910, QStringLiteral("Your user rights do not allow you to change the booking "
                                                              "status to 'Reserved'."), 5911, QStringLiteral("User not authorised"));
            goBack();
            return;
        }
        for (const Guest &leg : Guest::legsOf(m_session.db(), m_edit.BBBookingID)) {
            if (!getExtrasByRoom(m_session.db(), leg.BBGuestID).empty()) {
                messages::critical(5912, QStringLiteral("This booking has extras on it. You can't set the status "
                                                                  "to 'Reserved', which may cancel this booking, while it "
                                                                  "has extras."), 5913, QStringLiteral("Booking has extras"));
                goBack();
                return;
            }
        }
    }
    if (statusHasHold(newCode)) {
        m_bookingForm->setRowVisible(dpReserved, true);
        dpReserved->setEnabled(true);
        if (dpReserved->date() == QDate::currentDate())
            dpReserved->setDateTime(QDateTime(QDate::currentDate().addDays(2), QTime(16, 0)));
    } else {
        m_bookingForm->setRowVisible(dpReserved, false);
        dpReserved->setEnabled(false);
    }
    if (newCode == QLatin1String("U"))
        txtnoadults->setText(QStringLiteral("0"));
    m_statusIndex = index;
    setDirty();
}

bool ViewBooking::datesChanged() const
{
    return dpFrom->date() != m_edit.storedFrom || dpTo->date() != m_edit.storedTo;
}

bool ViewBooking::headCountChanged() const
{
    return countOf(txtnoadults) != m_edit.storedAdults || countOf(txtchild1) != m_edit.storedChild1
           || countOf(txtChild2) != m_edit.storedChild2;
}

bool ViewBooking::guard() const
{
    if (!datesChanged() && !headCountChanged())
        return true;
    messages::critical(5914, QStringLiteral("You changed important booking data. Click 'Save Changes' first."), 5915, QStringLiteral("Data was changed"));
    return false;
}

bool ViewBooking::readScreen()
{
    const std::optional<double> commission = parseAmount(txtAgentComm->text(), deskLocale());
    const std::optional<double> deposit = parseAmount(txtDeposit->text(), deskLocale());
    if (!commission || !deposit) {
        messages::show(Refusal(5991, QStringLiteral("\"%1\" is not an amount."), 5992, QStringLiteral("Incorrect amount"))
                           .arg(!commission ? txtAgentComm->text() : txtDeposit->text()));
        (!commission ? txtAgentComm : txtDeposit)->setFocus();
        return false;
    }
    m_edit.status = cboStatus->currentData().toString();
    m_edit.reservedUntil = dpReserved->dateTime();
    m_edit.fromDate = dpFrom->date();
    m_edit.toDate = dpTo->date();
    m_edit.notes = txtNotes->toPlainText();
    m_edit.source = txtSource->text();
    m_edit.agentComm = *commission;
    m_edit.deposit = *deposit;
    m_edit.BBRateID = cboRateCode->currentData().toInt();
    m_edit.adults = countOf(txtnoadults);
    m_edit.child1 = countOf(txtchild1);
    m_edit.child2 = countOf(txtChild2);
    m_edit.checkedIn = ckCheckedIn->isChecked();
    m_edit.checkedOut = ckCheckedOut->isChecked();
    m_edit.reference = txtReference->text();
    return true;
}

bool ViewBooking::cmdSave()
{
    if (!readScreen())
        return false;
    Result<SaveOutcome> outcome =
        BookingSave(m_session.db(), m_rates, m_session.setup(), m_session.getUser(), m_questions).save(m_edit);
    m_loading = true;
    dpFrom->setDate(m_edit.fromDate);
    dpTo->setDate(m_edit.toDate);
    ckCheckedIn->setChecked(m_edit.checkedIn);
    ckCheckedOut->setChecked(m_edit.checkedOut);
    m_loading = false;
    if (!outcome) {
        messages::show(outcome.refusal());
        return false;
    }
    m_session.publish(outcome->changes);
    load(m_edit.BBBookingID, m_edit.roomId);
    if (outcome->reviewRates && choosers.rates(this, m_edit.BBBookingID))
        refreshTotals();
    return true;
}

void ViewBooking::cmdSplit()
{
    if (!guard())
        return;
    if (!messages::ask(5916, QStringLiteral("Are you sure you want to split this leg into a booking of its own?"), 5826,
                       QStringLiteral("Split Booking?")))
        return;
    Result<SplitOutcome> split = BookingSave(m_session.db(), m_rates, m_session.setup(), m_session.getUser(), m_questions)
                                     .split(m_edit.BBBookingID, m_edit.loadedRoomId);
    if (!split) {
        messages::show(split.refusal());
        return;
    }
    m_session.publish(split->changes);
    load(split->newBookingId, m_edit.loadedRoomId);
}

void ViewBooking::cmdChangeRooms()
{
    const qint32 room = choosers.changeRoom(this, m_edit.BBBookingID, m_edit.roomId, dpFrom->date(), dpTo->date());
    if (room == 0 || room == m_edit.roomId)
        return;
    m_edit.roomId = room;
    fillRates();
    lblRoomName->setText(m_session.property().RoomName(room));
    m_dirty = true;
}

void ViewBooking::cmdAddRoom()
{
    if (!guard())
        return;
    const qint32 room = choosers.addRoom(this, m_edit.BBBookingID, m_edit.loadedRoomId);
    if (room != 0)
        load(m_edit.BBBookingID, room);
}

void ViewBooking::cmdViewRates()
{
    if (!guard())
        return;
    if (choosers.rates(this, m_edit.BBBookingID))
        refreshTotals();
}

void ViewBooking::cancelled(const Result<CancelOutcome> &outcome)
{
    if (!outcome) {
        messages::show(outcome.refusal());
        return;
    }
    if (!outcome->cancelled)
        return;
    m_session.publish(outcome->changes);
    m_dirty = false;
    accept();
}

void ViewBooking::cmdDelete()
{
    cancelled(BookingCancel(m_session.db(), m_session.getUser()).cancelBooking(m_edit.BBBookingID, m_cancelQuestions));
}

void ViewBooking::cmdDeleteRoom()
{
    cancelled(BookingCancel(m_session.db(), m_session.getUser())
                  .cancelRoom(m_edit.BBBookingID, m_edit.loadedRoomId, m_cancelQuestions));
}

void ViewBooking::cmdViewRooms()
{
    const qint32 room = choosers.room(this, m_edit.BBBookingID);
    if (room == 0 || room == m_edit.loadedRoomId)
        return;
    if (!legHasGuest(m_session.db(), m_edit.BBBookingID, room)) {
        messages::critical(5925, QStringLiteral("Error: Could not fetch guest record. Please call veldmoor(021 555 0100)."), 5926, QStringLiteral("Could not fetch guest record."));
        return;
    }
    load(m_edit.BBBookingID, room);
}

void ViewBooking::cmdCalcDeposit()
{
    if (!guard())
        return;
    QString total = lblTotal->text();
    total.remove(QLatin1Char(','));
    const double deposit = calcDeposit(m_session.setup(), total.toDouble(), nightCount(dpFrom->date(), dpTo->date()));
    if (total.toDouble() == 0)
        tellRatesNotEntered();
    txtDeposit->setText(formatAmount(deposit));
    m_dirty = true;
}

void ViewBooking::cmdExit()
{
    if (m_dirty && messages::ask(5919, QStringLiteral("Do you want to save your changes?"), 5920, QStringLiteral("Save changes?")))
        cmdSave();
    accept();
}

void ViewBooking::showNames()
{
    Database &db = m_session.db();
    outMadeBy->setText(clientNameOf(db, m_edit.MadeBy));
    outGuest->setText(clientNameOf(db, m_edit.BBClientID));
    outGuest2->setText(clientNameOf(db, m_edit.BBClient2ID));
    m_madeByView->setEnabled(m_edit.MadeBy > 0);
    m_guest1View->setEnabled(m_edit.BBClientID > 0);
    m_guest2View->setEnabled(m_edit.BBClient2ID > 0);
    m_guest2Del->setEnabled(m_edit.BBClient2ID != 0);
    m_guest2Email->setEnabled(m_edit.BBClient2ID != 0);
}

bool ViewBooking::changeClient(qint32 &slot)
{
    const qint32 chosen = choosers.client(this);
    if (chosen < 1 || chosen == slot)
        return false;
    slot = chosen;
    m_dirty = true;
    showNames();
    return true;
}

void ViewBooking::viewClient(qint32 &slot)
{
    if (slot < 1)
        return;
    const qint32 saved = choosers.editClient(this, slot);
    if (saved < 1)
        return;
    if (saved != slot) {
        slot = saved;
        m_dirty = true;
    }
    showNames();
}

void ViewBooking::cmdMadeBy()
{
    viewClient(m_edit.MadeBy);
}

void ViewBooking::cmdGuest1()
{
    viewClient(m_edit.BBClientID);
}

void ViewBooking::cmdGuest2()
{
    viewClient(m_edit.BBClient2ID);
}

void ViewBooking::cmdMadeByChange()
{
    if (!changeClient(m_edit.MadeBy))
        return;
    messages::show(Refusal(5927, QStringLiteral("You have changed who 'made' this booking."), 5929, QStringLiteral("'Made By' was changed."))
                       .asInformation()
                       .thenText(QStringLiteral("\n\n"))
                       .then(5928, QStringLiteral("Check the Account information in case this also needs to change.")));
    Database &db = m_session.db();
    Client client;
    Booking head;
    if (!client.fetch(db, m_edit.MadeBy) || !head.fetch(db, m_edit.BBBookingID) || client.BBRateSheetID == head.BBRateSheetID)
        return;
    messages::show(Refusal(5930, QStringLiteral("The selected client uses the "), 5934, QStringLiteral("Different rate sheet may apply."))
                       .asInformation()
                       .thenText(rateSheetName(db, client.BBRateSheetID))
                       .then(5931, QStringLiteral(" rate sheet."))
                       .thenText(QStringLiteral("\n"))
                       .then(5932, QStringLiteral("The current rate sheet for this booking is "))
                       .thenText(rateSheetName(db, head.BBRateSheetID) + QStringLiteral("\n\n"))
                       .then(5933, QStringLiteral("Click View Rates if you want to adjust.")));
}

void ViewBooking::cmdGuest1Change()
{
    changeClient(m_edit.BBClientID);
}

void ViewBooking::cmdGuest2Change()
{
    changeClient(m_edit.BBClient2ID);
}

void ViewBooking::cmdGuest2del()
{
    if (m_edit.BBClient2ID == 0)
        return;
    if (!messages::ask(Refusal(5935, QStringLiteral("Are you sure you want to remove "), 5937,
                               QStringLiteral("Remove guest from booking?"))
                           .thenText(outGuest2->text())
                           .then(5936, QStringLiteral(" from this booking?")),
                       true))
        return;
    m_edit.BBClient2ID = 0;
    m_dirty = true;
    showNames();
}

void ViewBooking::emailToClipboard(qint32 clientId)
{
    Client client;
    const QString email = clientId != 0 && client.fetch(m_session.db(), clientId) ? client.Email.trimmed() : QString();
    if (email.isEmpty()) {
        messages::critical(5938, QStringLiteral("No email address for this client."), 5939, QStringLiteral("No email address."));
        return;
    }
    QGuiApplication::clipboard()->setText(email);
    messages::show(Refusal(5940, QStringLiteral("%1 is now on the clipboard."), 5942, QStringLiteral("Email on clipboard"))
                       .arg(email)
                       .asInformation()
                       .thenText(QStringLiteral("\n"))
                       .then(5941, QStringLiteral("Go to any application and click Paste.")));
}

void ViewBooking::cmdMadeByEmail()
{
    emailToClipboard(m_edit.MadeBy);
}

void ViewBooking::cmdGuest1Email()
{
    emailToClipboard(m_edit.BBClientID);
}

void ViewBooking::cmdGuest2Email()
{
    emailToClipboard(m_edit.BBClient2ID);
}

void ViewBooking::cmdSources()
{
    const QString chosen = choosers.source(this, txtSource->text());
    if (chosen.isEmpty() || chosen == txtSource->text())
        return;
    txtSource->setText(chosen);
    setDirty();
}

void ViewBooking::sourceChanged()
{
    if (m_loading)
        return;
    const QString source = txtSource->text();
    if (source.isEmpty() || parseAmount(txtAgentComm->text(), deskLocale()).value_or(0) != 0)
        return;
    txtAgentComm->setText(formatAmount(newestAgentComm(m_session.db(), source)));
}

void ViewBooking::initialise(Session &session, const RateData &rates, qint32 bbBookingId, qint32 bbRoomId, QWidget *parent)
{
    ViewBooking dialog(session, rates, parent);
    if (!dialog.load(bbBookingId, bbRoomId))
        return;
    dialog.exec();
}

void ViewBooking::cmdPrint()
{
    if (!guard())
        return;
    PrintChoose dialog(m_session, m_edit.BBBookingID, m_edit.roomId, this);
    dialog.exec();
}

} // namespace fenlark
