#include "bookings/screens/changerooms.h"

#include "bookings/roommoves.h"
#include "shell/messages.h"
#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/session.h"
#include "shell/strings.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace fenlark {

ChangeRooms::ChangeRooms(Session &session, qint32 bbBookingId, qint32 bbRoomId, QDate from, QDate to, QWidget *parent)
    : QDialog(parent), m_session(session), m_bookingId(bbBookingId), m_roomId(bbRoomId), m_from(from), m_to(to),
      m_chosen(bbRoomId)
{
    setObjectName(QStringLiteral("dlgChangeRooms"));
    setWindowTitle(getString(5917, QStringLiteral("Change Room")));
    lstRooms = new QListWidget(this);
    lstRooms->setObjectName(QStringLiteral("lstRooms"));
    auto *ok = makeDialogButton(this, QStringLiteral("cmdOK"), getString(5849, QStringLiteral("OK")));
    auto *cancel = makeDialogButton(this, QStringLiteral("cmdCancel"), getString(5850, QStringLiteral("Cancel")));
    ok->setDefault(true);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(getString(5918, QStringLiteral("Free rooms for these dates:")), this));
    layout->addWidget(lstRooms, 1);
    layout->addLayout(buttons);
    resize(280, 360);

    connect(lstRooms, &QListWidget::itemDoubleClicked, this, guarded(this, &ChangeRooms::cmdOK));
    connect(ok, &QPushButton::clicked, this, guarded(this, &ChangeRooms::cmdOK));
    connect(cancel, &QPushButton::clicked, this, guarded(this, &QDialog::reject));
}

bool ChangeRooms::initialise()
{
    const Result<std::vector<qint32>> rooms = roomsForChange(m_session.db(), m_session.calendar(), m_session.property().rooms(),
                                                             m_bookingId, m_roomId, m_from, m_to);
    if (!rooms) {
        messages::show(rooms.refusal());
        return false;
    }
    for (qint32 room : *rooms) {
        auto *item = new QListWidgetItem(m_session.property().RoomName(room), lstRooms);
        item->setData(Qt::UserRole, room);
    }
    lstRooms->setCurrentRow(0);
    return true;
}

void ChangeRooms::cmdOK()
{
    if (const QListWidgetItem *item = lstRooms->currentItem())
        m_chosen = item->data(Qt::UserRole).toInt();
    accept();
}

} // namespace fenlark
