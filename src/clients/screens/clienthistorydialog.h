#pragma once

#include "clients/clientlistmodels.h"
#include "clients/screens/ucclientsearch.h"

#include <QDialog>

#include <functional>

class QPushButton;
class QTableView;

namespace fenlark {

class Session;

// dlgClientHistory: every booking a client had a part in, with its nights and
// money. A client picked in the search (one click is enough) fills the list; a
// double-click on a booking opens it in the booking editor at its first room.
class ClientHistory : public QDialog, public IClientSearch {
    Q_OBJECT
public:
    // openBooking shows the booking editor on that booking and room.
    ClientHistory(Session &session, std::function<void(qint32 bookingId, qint32 roomId)> openBooking,
                  QWidget *parent = nullptr);

    void doubleClick() override;
    void singleClick() override;

    // Lists the client's bookings (none for 0).
    void fill(qint32 clientId);
    qint32 clientId() const { return m_clientId; }
    // Opens the booking of that row, then lists again.
    void openRow(int row);

public Q_SLOTS:
    void cmdClipboard();

public:
    ucClientSearch *search = nullptr;
    QTableView *gdBookings = nullptr;
    QPushButton *cmdClipboardButton = nullptr;
    QPushButton *cmdExit = nullptr;
    ClientHistoryModel *model() const { return m_model; }

private:
    Session &m_session;
    std::function<void(qint32, qint32)> m_openBooking;
    ClientHistoryModel *m_model = nullptr;
    qint32 m_clientId = 0;
};

} // namespace fenlark
