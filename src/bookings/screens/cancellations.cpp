#include "bookings/screens/cancellations.h"

#include "shell/messages.h"
#include "shell/refusal.h"
#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/screens/waitcursor.h"
#include "shell/session.h"
#include "shell/strings.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

namespace fenlark {

Cancellations::Cancellations(Session &session, const RateData &rates, QWidget *parent)
    : QDialog(parent), m_session(session), m_rates(rates)
{
    setObjectName(QStringLiteral("dlgCancellations"));
    setWindowTitle(getString(6500, QStringLiteral("View cancelled bookings")));
    txtSearch = new QLineEdit(this);
    txtSearch->setObjectName(QStringLiteral("txtSearch"));
    m_model = new CancellationsModel(this);
    gdBookings = new QTableView(this);
    gdBookings->setObjectName(QStringLiteral("gdBookings"));
    gdBookings->setModel(m_model);
    gdBookings->setSelectionBehavior(QAbstractItemView::SelectRows);
    gdBookings->setSelectionMode(QAbstractItemView::SingleSelection);
    gdBookings->setEditTriggers(QAbstractItemView::NoEditTriggers);
    gdBookings->verticalHeader()->hide();
    gdBookings->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    gdBookings->horizontalHeader()->setSectionResizeMode(CancellationsModel::ClientColumn, QHeaderView::Stretch);
    for (int column : {CancellationsModel::GuestIdColumn, CancellationsModel::RoomIdColumn, CancellationsModel::BookingIdColumn})
        gdBookings->setColumnHidden(column, true);

    auto *exit = makeDialogButton(this, QStringLiteral("cmdExit"), getString(5961, QStringLiteral("Exit")));
    auto *search = new QFormLayout;
    search->addRow(getString(5634, QStringLiteral("Surname:")), txtSearch);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(new QLabel(getString(6509, QStringLiteral("Double-click a room to restore it.")), this), 1);
    buttons->addWidget(exit);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(search);
    layout->addWidget(gdBookings, 1);
    layout->addLayout(buttons);
    resize(820, 480);

    connect(txtSearch, &QLineEdit::textChanged, this, guarded(this, &Cancellations::fill));
    connect(gdBookings, &QTableView::doubleClicked, this, guarded([this](const QModelIndex &index) { restoreRow(index.row()); }));
    connect(exit, &QPushButton::clicked, this, guarded(this, &QDialog::accept));
}

void Cancellations::fill()
{
    WaitCursor wait;
    m_model->setRows(cancelledLegs(m_session.db(), txtSearch->text().trimmed()));
}

void Cancellations::restoreRow(int row)
{
    if (row < 0 || row >= m_model->rowCount() || m_model->row(row).BBGuestID == 0)
        return;
    const qint32 guestId = m_model->row(row).BBGuestID;
    if (!messages::ask(6502, QStringLiteral("Restore this booking?"), 6503, QStringLiteral("Restore booking?"), true))
        return;
    const Result<RestoreOutcome> restored = restoreLeg(m_session.db(), m_rates, m_session.getUser(), guestId);
    if (!restored) {
        messages::show(restored.refusal());
        return;
    }
    m_session.publish(restored->changes);
    messages::inform(6504, QStringLiteral("This booking has been restored."), 6505, QStringLiteral("Booking restored"));
    fill();
    if (restored->stillCancelled.isEmpty())
        return;
    Refusal others = Refusal(6506, QStringLiteral("This booking (ID %1) was a multi-room booking with the following rooms still cancelled:"),
                             6508, QStringLiteral("Multi-room booking"));
    others.arg(restored->BBBookingID).thenText(QStringLiteral("\n\n"));
    for (const QString &room : restored->stillCancelled)
        others.thenText(QStringLiteral("\t") + room + QStringLiteral("\n"));
    others.thenText(QStringLiteral("\n")).then(6507, QStringLiteral("Please remember to restore these too, if relevant."));
    messages::show(others);
}

} // namespace fenlark
