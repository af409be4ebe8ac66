#include "bookings/screens/checkinout.h"

#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/session.h"
#include "shell/strings.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace fenlark {

namespace {
// The hidden second column, headed "Guest ID", holds the leg's room: the key the editor opens on.
enum Column { ColBooking, ColRoomId, ColRoom, ColClient, ColumnCount };
}

CheckInOut::CheckInOut(Session &session, StayEnd end, OpenBooking viewBooking, QWidget *parent)
    : QDialog(parent), m_session(session), m_viewBooking(std::move(viewBooking)), m_end(end)
{
    setObjectName(QStringLiteral("dlgBookings"));
    setWindowTitle(end == StayEnd::Arrivals ? getString(5963, QStringLiteral("Check-Ins"))
                                            : getString(5964, QStringLiteral("Check-Outs")));
    gdBookings = makeListGrid(this, QStringLiteral("gdBookings"),
                              {getString(5965, QStringLiteral("Booking ID")), getString(5966, QStringLiteral("Guest ID")),
                               getString(5958, QStringLiteral("Room")), getString(5967, QStringLiteral("Client"))},
                              ColClient);
    gdBookings->setColumnHidden(ColBooking, true);
    gdBookings->setColumnHidden(ColRoomId, true);

    cmdExit = makeDialogButton(this, QStringLiteral("cmdExit"), getString(5961, QStringLiteral("Exit")));
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdExit);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(gdBookings, 1);
    layout->addLayout(buttons);
    resize(480, 360);

    connect(gdBookings, &QTableWidget::cellDoubleClicked, this, guarded([this](int row, int) { openRow(row); }));
    connect(cmdExit, &QPushButton::clicked, this, guarded(this, &QDialog::accept));
}

void CheckInOut::initialise(Session &session, StayEnd end, const OpenBooking &viewBooking, QWidget *parent)
{
    CheckInOut dialog(session, end, viewBooking, parent);
    dialog.fill();
    dialog.exec();
}

void CheckInOut::fill()
{
    const std::vector<DayLeg> legs = legsOfTheDay(m_session.db(), m_end, QDate::currentDate());
    gdBookings->setRowCount(static_cast<int>(legs.size()));
    for (int r = 0; r < static_cast<int>(legs.size()); ++r) {
        const DayLeg &leg = legs[static_cast<size_t>(r)];
        gdBookings->setItem(r, ColBooking, new QTableWidgetItem(QString::number(leg.BBBookingID)));
        gdBookings->setItem(r, ColRoomId, new QTableWidgetItem(QString::number(leg.BBRoomID)));
        gdBookings->setItem(r, ColRoom, new QTableWidgetItem(leg.roomName));
        gdBookings->setItem(r, ColClient, new QTableWidgetItem(leg.client));
    }
}

void CheckInOut::openRow(int row)
{
    if (row < 0 || row >= gdBookings->rowCount())
        return;
    m_viewBooking(gdBookings->item(row, ColBooking)->text().toInt(), gdBookings->item(row, ColRoomId)->text().toInt());
    fill();
}

} // namespace fenlark
