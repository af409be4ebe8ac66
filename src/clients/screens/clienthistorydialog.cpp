#include "clients/screens/clienthistorydialog.h"

#include "shell/messages.h"
#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/session.h"
#include "shell/strings.h"

#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

namespace fenlark {

ClientHistory::ClientHistory(Session &session, std::function<void(qint32, qint32)> openBooking, QWidget *parent)
    : QDialog(parent)
    , m_session(session)
    , m_openBooking(std::move(openBooking))
    , m_model(new ClientHistoryModel(this))
{
    setObjectName(QStringLiteral("dlgClientHistory"));
    setWindowTitle(getString(1363, QStringLiteral("Client History")));
    search = new ucClientSearch(this);
    gdBookings = new QTableView(this);
    gdBookings->setObjectName(QStringLiteral("gdBookings"));
    gdBookings->setModel(m_model);
    gdBookings->setSelectionBehavior(QAbstractItemView::SelectRows);
    gdBookings->setSelectionMode(QAbstractItemView::SingleSelection);
    gdBookings->setEditTriggers(QAbstractItemView::NoEditTriggers);
    gdBookings->verticalHeader()->hide();
    gdBookings->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    cmdClipboardButton = makeDialogButton(this, QStringLiteral("cmdClipboard"), getString(6978, QStringLiteral("Copy to clipboard")));
    cmdExit = makeDialogButton(this, QStringLiteral("cmdExit"), getString(5643, QStringLiteral("E&xit")));

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(cmdClipboardButton);
    buttons->addStretch(1);
    buttons->addWidget(cmdExit);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(search, 1);
    layout->addWidget(gdBookings, 1);
    layout->addLayout(buttons);
    resize(620, 640);

    search->initialise(this, session.db());
    search->singleClick();
    connect(gdBookings, &QTableView::doubleClicked, this, guarded([this](const QModelIndex &index) { openRow(index.row()); }));
    connect(cmdClipboardButton, &QPushButton::clicked, this, guarded(this, &ClientHistory::cmdClipboard));
    connect(cmdExit, &QPushButton::clicked, this, guarded(this, &QDialog::reject));
}

void ClientHistory::doubleClick()
{
    fill(search->MadeBy());
}

void ClientHistory::singleClick()
{
    fill(search->MadeBy());
}

void ClientHistory::fill(qint32 clientId)
{
    m_clientId = clientId;
    m_model->setRows(clientHistory(m_session.db(), clientId));
}

void ClientHistory::openRow(int row)
{
    if (row < 0 || row >= m_model->rowCount())
        return;
    const qint32 booking = m_model->rows().at(std::size_t(row)).BBBookingID;
    const qint32 room = firstRoomOfBooking(m_session.db(), booking);
    if (room == 0) {
        messages::inform(6976, QStringLiteral("Could not find room information for this booking."), 6977,
                         QStringLiteral("Could not find room."));
        return;
    }
    m_openBooking(booking, room);
    fill(m_clientId);
}

void ClientHistory::cmdClipboard()
{
    QApplication::clipboard()->setText(clientHistoryText(m_session.db(), m_clientId, m_model->rows()));
    messages::inform(6974,
                     QStringLiteral("Client History is now on your clipboard. Use Paste in a spreadsheet or document to see report."),
                     6975, QStringLiteral("Client History on Clipboard"));
}

} // namespace fenlark
