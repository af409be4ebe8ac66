#include "bookings/screens/viewrooms.h"

#include "bookings/bookingdetails.h"
#include "rates/ratescalculator.h"
#include "shell/messages.h"
#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/strings.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace fenlark {

namespace {

enum Column { ColRoom, ColGuest, ColAdults, ColChild1, ColChild2, ColumnCount };

QTableWidgetItem *cell(const QString &text)
{
    return new QTableWidgetItem(text);
}

} // namespace

ViewRooms::ViewRooms(Database &db, qint32 bbBookingId, QWidget *parent)
    : QDialog(parent), m_db(db), m_bookingId(bbBookingId)
{
    setObjectName(QStringLiteral("dlgViewRooms"));
    setWindowTitle(getString(5871, QStringLiteral("View all rooms")));

    ChildPolicy policy;
    policy.fetchChildPolicy(db);
    const QString children = getString(5876, QStringLiteral("Children"));
    // Counts take what they need; the guest's name has the rest of the width.
    gdRooms = makeListGrid(this, QStringLiteral("gdRooms"),
                           {getString(5873, QStringLiteral("Room")), getString(5887, QStringLiteral("Guest")),
                            getString(5875, QStringLiteral("Adults")), children + QLatin1Char('\n') + policy.label1,
                            children + QLatin1Char('\n') + policy.label2},
                           ColGuest);
    gdRooms->setColumnHidden(ColChild1, policy.ChildAge1 == 0);
    gdRooms->setColumnHidden(ColChild2, policy.ChildAge2 == 0);

    cmdExit = makeDialogButton(this, QStringLiteral("cmdExit"), getString(5904, QStringLiteral("Close")));
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdExit);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(gdRooms, 1);
    layout->addLayout(buttons);
    resize(640, 300);

    connect(gdRooms, &QTableWidget::cellDoubleClicked, this, guarded([this](int row, int) { pickRow(row); }));
    connect(cmdExit, &QPushButton::clicked, this, guarded(this, &QDialog::reject));
}

bool ViewRooms::initialise()
{
    const std::vector<LegLine> lines = legLines(m_db, m_bookingId);
    if (lines.empty()) {
        messages::critical(5923, QStringLiteral("Error: Could not fetch guest information. Call veldmoor (021 555 0100)"), 5924, QStringLiteral("Error fetching guest information"));
        return false;
    }
    gdRooms->setRowCount(int(lines.size()));
    for (int row = 0; row < int(lines.size()); ++row) {
        const LegLine &line = lines[size_t(row)];
        QTableWidgetItem *room = cell(line.roomName);
        room->setData(Qt::UserRole, line.BBRoomID);
        gdRooms->setItem(row, ColRoom, room);
        gdRooms->setItem(row, ColGuest, cell(line.guestName));
        gdRooms->setItem(row, ColAdults, cell(QString::number(line.adults)));
        gdRooms->setItem(row, ColChild1, cell(QString::number(line.child1)));
        gdRooms->setItem(row, ColChild2, cell(QString::number(line.child2)));
    }
    return true;
}

void ViewRooms::pickRow(int row)
{
    const QTableWidgetItem *room = gdRooms->item(row, ColRoom);
    if (!room)
        return;
    m_selected = room->data(Qt::UserRole).toInt();
    accept();
}

} // namespace fenlark
