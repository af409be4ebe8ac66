#include "synch/screens/dlgsynch.h"

#include "shell/screens/guard.h"
#include "shell/strings.h"
#include "synch/synchrun.h"

#include <QApplication>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace fenlark {

DlgSynch::DlgSynch(Database &db, QWidget *parent)
    : QDialog(parent), m_db(db), m_lblProgress(new QLabel(this)), m_cmdProgress(new QPushButton(this))
{
    setWindowTitle(getString(1441, QStringLiteral("Synchronisation")));
    setObjectName(QStringLiteral("dlgSynch"));
    m_lblProgress->setObjectName(QStringLiteral("lblProgress"));
    m_cmdProgress->setObjectName(QStringLiteral("cmdProgress"));
    m_lblProgress->setText(getString(1443, QStringLiteral("Are you ready to begin synchronisation?")));
    m_lblProgress->setWordWrap(true);
    m_lblProgress->setMinimumWidth(360);
    m_cmdProgress->setText(getString(1442, QStringLiteral("Start Synchronisation")));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_lblProgress);
    layout->addWidget(m_cmdProgress, 0, Qt::AlignRight);
    connect(m_cmdProgress, &QPushButton::clicked, this, guarded(this, &DlgSynch::onProgressClicked));
}

void DlgSynch::progress(const QString &text)
{
    m_lblProgress->setText(text);
    m_lblProgress->repaint();
}

void DlgSynch::onProgressClicked()
{
    if (m_started) {
        accept();
        return;
    }
    m_started = true;
    m_cmdProgress->setEnabled(false);
    m_cmdProgress->setText(getString(6023, QStringLiteral("Exit")));
    QApplication::setOverrideCursor(Qt::WaitCursor);
    m_success = runSynch(m_db, true, this);
    QApplication::restoreOverrideCursor();
    m_cmdProgress->setEnabled(true);
}

DlgNewBooking::DlgNewBooking(const QString &text, QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("dlgNewBooking"));
    setWindowTitle(getString(1497, QStringLiteral("New bookings")));
    auto *narrative = new QLabel(getString(1499, QStringLiteral("This box shows new bookings received from the veldmoor server.")), this);
    narrative->setObjectName(QStringLiteral("lblBookingsReceivedNarr"));
    auto *list = new QPlainTextEdit(text, this);
    list->setReadOnly(true);
    auto *exit = new QPushButton(getString(1498, QStringLiteral("Close")), this);
    exit->setObjectName(QStringLiteral("cmdExit"));
    connect(exit, &QPushButton::clicked, this, guarded(this, &QDialog::accept));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(narrative);
    layout->addWidget(list);
    layout->addWidget(exit, 0, Qt::AlignRight);
    resize(420, 360);
}

bool synchManually(Database &db, QWidget *parent)
{
    DlgSynch dialog(db, parent);
    dialog.exec();
    if (!dialog.succeeded())
        return false;
    const QString text = newBookingText(db);
    if (!text.isEmpty()) {
        DlgNewBooking notice(text, parent);
        notice.exec();
    }
    clearNewBookings(db);
    return true;
}

} // namespace fenlark
