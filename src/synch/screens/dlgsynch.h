#pragma once

#include "synch/synch.h"

#include <QDialog>

class QLabel;
class QPushButton;

namespace fenlark {

class Database;

// The manual synchronisation: a button that starts the run and becomes "Exit",
// a line that follows its progress, and Cancel. Before the run Cancel closes the
// dialog; while the run waits on the server it ends the wait at once (so does
// Escape or closing the window), nothing of the unfinished reply is applied, the
// change log keeps its rows and the next run starts afresh.
class DlgSynch : public QDialog, public SynchObserver {
    Q_OBJECT

public:
    DlgSynch(Database &db, QWidget *parent = nullptr);

    bool succeeded() const { return m_success; }
    bool isRunning() const { return m_running; }
    void progress(const QString &text) override;

public Q_SLOTS:
    void reject() override;

private:
    void onProgressClicked();

    Database &m_db;
    QLabel *m_lblProgress;
    QPushButton *m_cmdProgress;
    QPushButton *m_cmdCancel;
    SynchCancel m_cancel;
    bool m_started = false;
    bool m_running = false;
    bool m_success = false;
};

// The notice of bookings that arrived from the server.
class DlgNewBooking : public QDialog {
    Q_OBJECT

public:
    DlgNewBooking(const QString &text, QWidget *parent = nullptr);
};

// The main window's manual synchronisation: the dialog, then on success the
// new-bookings notice; the list of new bookings starts again after any good run.
// True when the calendar should be rebuilt.
bool synchManually(Database &db, QWidget *parent);

} // namespace fenlark
