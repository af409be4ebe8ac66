#include "bookings/screens/doublebook.h"

#include "shell/messages.h"
#include "shell/refusal.h"
#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/session.h"
#include "shell/strings.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace fenlark {

namespace {

enum Column { ColBooking, ColType, ColSurname, ColArrival, ColDeparture, ColRoom, ColRoomId, ColumnCount };

void allClear()
{
    messages::inform(5948, QStringLiteral("There are no double bookings in the system."), 5949,
                     QStringLiteral("No double-bookings found."));
}

} // namespace

DoubleBook::DoubleBook(Session &session, OpenBooking viewBooking, QWidget *parent)
    : QDialog(parent), m_session(session), m_viewBooking(std::move(viewBooking)), m_scan(session.db())
{
    setObjectName(QStringLiteral("dlgDoubleBook"));
    setWindowTitle(getString(5950, QStringLiteral("Double-bookings which need correction")));

    lblDoubleClickNarr = new QLabel(getString(5951, QStringLiteral("The system found the following double-bookings, which need to "
                                                                    "be corrected. Double-click the booking and re-arrange the "
                                                                    "rooms, or delete the whole booking.")),
                                    this);
    lblDoubleClickNarr->setObjectName(QStringLiteral("lblDoubleClickNarr"));
    lblDoubleClickNarr->setWordWrap(true);
    lblCheackAgainNarr = new QLabel(getString(5952, QStringLiteral("Press the 'Check Again' button after making changes.")), this);
    lblCheackAgainNarr->setObjectName(QStringLiteral("lblCheackAgainNarr"));

    gdDouble = makeListGrid(this, QStringLiteral("gdDouble"),
                            {getString(5965, QStringLiteral("Booking ID")), getString(5954, QStringLiteral("Type")),
                             getString(5955, QStringLiteral("Surname")), getString(5956, QStringLiteral("Arrival")),
                             getString(5957, QStringLiteral("Departure")), getString(5958, QStringLiteral("Room")),
                             getString(5959, QStringLiteral("RoomID"))},
                            ColSurname);
    gdDouble->setColumnHidden(ColRoomId, true);

    auto *refresh = makeDialogButton(this, QStringLiteral("cmdRefresh"), getString(5960, QStringLiteral("Check Again")));
    auto *exit = makeDialogButton(this, QStringLiteral("cmdExit"), getString(5961, QStringLiteral("Exit")));
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(lblCheackAgainNarr, 1);
    buttons->addWidget(refresh);
    buttons->addWidget(exit);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(lblDoubleClickNarr);
    layout->addWidget(gdDouble, 1);
    layout->addLayout(buttons);
    resize(720, 360);

    connect(gdDouble, &QTableWidget::cellDoubleClicked, this, guarded([this](int row, int) { openRow(row); }));
    connect(refresh, &QPushButton::clicked, this, guarded(this, &DoubleBook::cmdRefresh));
    connect(exit, &QPushButton::clicked, this, guarded(this, &DoubleBook::cmdExit));
}

bool DoubleBook::check(Session &session, const OpenBooking &viewBooking, bool onStart, QWidget *parent)
{
    DoubleBook dialog(session, viewBooking, parent);
    return dialog.initialise(onStart);
}

bool DoubleBook::initialise(bool onStart)
{
    m_completed = false;
    if (!m_scan.scan()) {
        if (!onStart)
            allClear();
        m_completed = true;
        return true;
    }
    reportUnreadable();
    fill();
    exec();
    return m_completed;
}

void DoubleBook::reportUnreadable()
{
    for (qint32 id : m_scan.unreadable())
        messages::show(Refusal(5962, QStringLiteral("DoubleBooking: Error fetching one of the double bookings. ID = "), 5950,
                               QStringLiteral("Double-bookings which need correction"))
                           .thenText(QString::number(id)));
}

void DoubleBook::fill()
{
    const auto &rows = m_scan.clashes();
    gdDouble->setRowCount(static_cast<int>(rows.size()));
    const QString dateFormat = QStringLiteral("ddd dd MMM yy");
    for (int r = 0; r < static_cast<int>(rows.size()); ++r) {
        const DoubleBookingRow &row = rows[static_cast<size_t>(r)];
        const bool known = row.fromDate.isValid();
        const QStringList texts = {QString::number(row.BBBookingID),
                                   row.type,
                                   row.name,
                                   known ? deskLocale().toString(row.fromDate, dateFormat) : QString(),
                                   known ? deskLocale().toString(row.toDate, dateFormat) : QString(),
                                   m_session.property().RoomName(row.BBRoomID),
                                   QString::number(row.BBRoomID)};
        for (int c = 0; c < ColumnCount; ++c)
            gdDouble->setItem(r, c, new QTableWidgetItem(texts.at(c)));
    }
}

void DoubleBook::openRow(int row)
{
    if (row < 0 || row >= gdDouble->rowCount())
        return;
    const qint32 booking = gdDouble->item(row, ColBooking)->text().toInt();
    const qint32 room = gdDouble->item(row, ColRoomId)->text().toInt();
    if (booking < 1 || room < 1)
        return;
    m_viewBooking(booking, room);
}

void DoubleBook::cmdRefresh()
{
    if (m_scan.scan()) {
        reportUnreadable();
        fill();
        return;
    }
    allClear();
    m_completed = true;
    accept();
}

void DoubleBook::cmdExit()
{
    m_completed = false;
    QDialog::reject();
}

void DoubleBook::reject()
{
    // Escape and the close box leave the program too: the desk is not used while rooms are sold twice.
    cmdExit();
}

} // namespace fenlark
