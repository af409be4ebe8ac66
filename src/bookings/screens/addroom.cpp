#include "bookings/screens/addroom.h"

#include "bookings/bookingrecords.h"
#include "bookings/roommoves.h"
#include "clients/clientrecords.h"
#include "clients/screens/clientsearchdialogs.h"
#include "rates/ratescalculator.h"
#include "rates/roomrates.h"
#include "shell/messages.h"
#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/session.h"
#include "shell/strings.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

namespace fenlark {

namespace {

QLineEdit *countBox(QWidget *parent, const QString &name, const QString &text)
{
    auto *box = new QLineEdit(text, parent);
    box->setObjectName(name);
    box->setValidator(new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]{0,3}")), box));
    return box;
}

} // namespace

AddRoom::AddRoom(Session &session, const RateData &rates, qint32 bbBookingId, qint32 bbRoomId, QWidget *parent)
    : QDialog(parent), m_session(session), m_rates(rates), m_bookingId(bbBookingId), m_roomId(bbRoomId)
{
    setObjectName(QStringLiteral("dlgAddRoom"));
    setWindowTitle(getString(5872, QStringLiteral("Add Room")));
    Database &db = session.db();
    chooseClient = [&db](QWidget *parent) {
        ClientDSearch dialog(db, parent);
        dialog.exec();
        return dialog.BBClientID();
    };

    auto *form = new QFormLayout;
    cboRooms = new QComboBox(this);
    cboRooms->setObjectName(QStringLiteral("cboRooms"));
    form->addRow(getString(5873, QStringLiteral("Room")), cboRooms);
    cboRateCode = new QComboBox(this);
    cboRateCode->setObjectName(QStringLiteral("cboRateCode"));
    form->addRow(getString(5874, QStringLiteral("Rate")), cboRateCode);
    outClient = new QLabel(this);
    outClient->setObjectName(QStringLiteral("outClient"));
    auto *client = new QHBoxLayout;
    client->addWidget(outClient, 1);
    auto *change = makeDialogButton(this, QStringLiteral("cmdClient"), getString(5867, QStringLiteral("Change")));
    client->addWidget(change);
    form->addRow(getString(5887, QStringLiteral("Guest")), client);

    ChildPolicy policy;
    policy.fetchChildPolicy(db);
    txtnoadults = countBox(this, QStringLiteral("txtnoadults"), QString::number(defaultAdults(session.getPreference(QStringLiteral("DEFUSER")))));
    txtchild1 = countBox(this, QStringLiteral("txtchild1"), QStringLiteral("0"));
    txtChild2 = countBox(this, QStringLiteral("txtChild2"), QStringLiteral("0"));
    const QString children = getString(5876, QStringLiteral("Children"));
    form->addRow(getString(5875, QStringLiteral("Adults")), txtnoadults);
    form->addRow(children + QLatin1Char(' ') + policy.label1, txtchild1);
    form->addRow(children + QLatin1Char(' ') + policy.label2, txtChild2);
    form->setRowVisible(txtchild1, policy.ChildAge1 != 0);
    form->setRowVisible(txtChild2, policy.ChildAge2 != 0);

    auto *ok = makeDialogButton(this, QStringLiteral("cmdOK"), getString(5849, QStringLiteral("OK")));
    auto *cancel = makeDialogButton(this, QStringLiteral("cmdCancel"), getString(5850, QStringLiteral("Cancel")));
    ok->setDefault(true);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addLayout(buttons);

    connect(cboRooms, &QComboBox::currentIndexChanged, this, guarded(this, &AddRoom::fillRates));
    connect(change, &QPushButton::clicked, this, guarded(this, &AddRoom::cmdClient));
    connect(ok, &QPushButton::clicked, this, guarded(this, &AddRoom::cmdOK));
    connect(cancel, &QPushButton::clicked, this, guarded(this, &QDialog::reject));
}

bool AddRoom::initialise()
{
    Database &db = m_session.db();
    Booking head;
    if (!head.fetch(db, m_bookingId)) {
        messages::show(Refusal(5827, QStringLiteral("Error: Could not fetch booking details. Call veldmoor (021 555 0108)"), 5828,
                               QStringLiteral("Could not find booking details")));
        return false;
    }
    m_from = head.FromDate;
    m_to = head.ToDate;
    const std::vector<qint32> free =
        fillFreeRooms(db, m_session.calendar(), m_session.property().rooms(), m_roomId, m_from, m_to.addDays(-1));
    if (free.empty()) {
        messages::critical(1691, QStringLiteral("There are no rooms free for these dates."), 1692, QStringLiteral("No rooms available"));
        return false;
    }
    Client client;
    if (!client.fetch(db, head.MadeBy)) {
        messages::critical(6511, QStringLiteral("Error: Could not fetch client data. Please call veldmoor (021 555 0100)."), 6512,
                           QStringLiteral("Error fetching client information."));
        return false;
    }
    m_clientId = client.BBClientID;
    outClient->setText(client.FullName());
    for (qint32 room : free)
        cboRooms->addItem(m_session.property().RoomName(room), room);
    return true;
}

void AddRoom::fillRates()
{
    cboRateCode->clear();
    cboRateCode->addItem(getString(5907, QStringLiteral("Manual Rates")), 0);
    for (const OfferedRate &rate : offeredRates(m_rates, m_from, m_to, cboRooms->currentData().toInt()))
        cboRateCode->addItem(rate.name, rate.BBRateID);
    // The room's default rate, when it has any.
    cboRateCode->setCurrentIndex(cboRateCode->count() > 1 ? 1 : 0);
}

void AddRoom::cmdClient()
{
    const qint32 chosen = chooseClient(this);
    Client client;
    if (chosen < 1 || !client.fetch(m_session.db(), chosen))
        return;
    m_clientId = chosen;
    outClient->setText(client.FullName());
}

void AddRoom::cmdOK()
{
    if (txtnoadults->text().isEmpty() && txtchild1->text().isEmpty() && txtChild2->text().isEmpty()) {
        messages::critical(6513, QStringLiteral("You haven't added the number of adults/children."), 6514,
                           QStringLiteral("Number of guests not filled in"));
        txtnoadults->setFocus();
        return;
    }
    if (!messages::ask(6515, QStringLiteral("Are you sure you want to add this room to the booking?"), 6516,
                       QStringLiteral("Add new room?")))
        return;
    AddRoomRequest request;
    request.BBBookingID = m_bookingId;
    request.BBRoomID = cboRooms->currentData().toInt();
    request.BBRateID = cboRateCode->currentData().toInt();
    request.BBClientID = m_clientId;
    request.adults = static_cast<qint16>(txtnoadults->text().toInt());
    request.child1 = static_cast<qint16>(txtchild1->text().toInt());
    request.child2 = static_cast<qint16>(txtChild2->text().toInt());
    const Result<AddRoomOutcome> added = RoomAdder(m_session.db(), m_rates, m_session.getUser()).add(request, m_questions);
    if (!added) {
        messages::show(added.refusal());
        return;
    }
    m_session.publish(added->changes);
    m_added = request.BBRoomID;
    accept();
}

} // namespace fenlark
