#include "bookings/screens/roomswap.h"

#include "shell/messages.h"
#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/session.h"
#include "shell/strings.h"

#include <QDateEdit>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace fenlark {

RoomSwapDialog::RoomSwapDialog(Session &session, QWidget *parent) : QDialog(parent), m_session(session)
{
    setObjectName(QStringLiteral("dlgRoomSwap"));
    setWindowTitle(getString(6435, QStringLiteral("Room Swap")));
    dpDate = new QDateEdit(QDate::currentDate(), this);
    dpDate->setObjectName(QStringLiteral("dpDate"));
    dpDate->setCalendarPopup(true);
    dpDate->setDisplayFormat(QStringLiteral("ddd dd/MM/yyyy"));
    lstRooms = new QListWidget(this);
    lstRooms->setObjectName(QStringLiteral("lstRooms"));
    lblRoom1 = new QLabel(this);
    lblRoom1->setObjectName(QStringLiteral("lblRoom1"));
    lblRoom2 = new QLabel(this);
    lblRoom2->setObjectName(QStringLiteral("lblRoom2"));
    lblMessage = new QLabel(this);
    lblMessage->setObjectName(QStringLiteral("lblMessage"));
    lblMessage->setStyleSheet(QStringLiteral("color: rgb(140, 0, 0);"));
    cmdSwapButton = makeDialogButton(this, QStringLiteral("cmdSwap"), getString(6525, QStringLiteral("&Swap")));
    auto *exit = makeDialogButton(this, QStringLiteral("cmdExit"), getString(5961, QStringLiteral("Exit")));

    auto *form = new QFormLayout;
    form->addRow(getString(6521, QStringLiteral("Date:")), dpDate);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(new QLabel(getString(6522, QStringLiteral("Click two rooms staying on this date to swap them.")), this));
    layout->addWidget(lstRooms, 1);
    auto *pair = new QFormLayout;
    pair->addRow(getString(6523, QStringLiteral("First room:")), lblRoom1);
    pair->addRow(getString(6524, QStringLiteral("Second room:")), lblRoom2);
    layout->addLayout(pair);
    layout->addWidget(lblMessage);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdSwapButton);
    buttons->addWidget(exit);
    layout->addLayout(buttons);
    resize(380, 440);

    connect(dpDate, &QDateEdit::dateChanged, this, guarded(this, &RoomSwapDialog::fill));
    connect(lstRooms, &QListWidget::itemClicked, this,
            guarded([this](QListWidgetItem *item) { pick(lstRooms->row(item)); }));
    connect(cmdSwapButton, &QPushButton::clicked, this, guarded(this, &RoomSwapDialog::cmdSwap));
    connect(exit, &QPushButton::clicked, this, guarded(this, &QDialog::reject));
    fill();
}

void RoomSwapDialog::fill()
{
    m_legs = legsStaying(m_session.db(), dpDate->date());
    lstRooms->clear();
    for (const StayingLeg &leg : m_legs)
        lstRooms->addItem(leg.text());
    m_slots = {0, 0};
    m_next = 0;
    lblRoom1->clear();
    lblRoom2->clear();
    check();
}

void RoomSwapDialog::pick(int row)
{
    if (row < 0 || row >= static_cast<int>(m_legs.size()))
        return;
    const StayingLeg &leg = m_legs[static_cast<size_t>(row)];
    m_slots[static_cast<size_t>(m_next)] = leg.BBGuestID;
    (m_next == 0 ? lblRoom1 : lblRoom2)->setText(leg.text());
    m_next = 1 - m_next;
    check();
}

void RoomSwapDialog::check()
{
    const Outcome fits = RoomSwap(m_session.db(), m_session.getUser()).check(m_slots[0], m_slots[1]);
    lblMessage->setText(fits ? QString() : fits.refusal().text());
    cmdSwapButton->setEnabled(fits.ok());
}

void RoomSwapDialog::cmdSwap()
{
    const Result<Changes> swapped = RoomSwap(m_session.db(), m_session.getUser()).swap(m_slots[0], m_slots[1]);
    if (!swapped) {
        messages::show(swapped.refusal());
        fill();
        return;
    }
    m_session.publish(*swapped);
    accept();
}

} // namespace fenlark
