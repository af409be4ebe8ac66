#include "bookings/screens/reminderbar.h"

#include "shell/screens/guard.h"
#include "shell/session.h"
#include "shell/strings.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace fenlark {

ReminderBar::ReminderBar(Session &session, std::function<void(qint32, qint32)> openBooking, QWidget *parent)
    : QFrame(parent), m_session(session), m_openBooking(std::move(openBooking))
{
    setObjectName(QStringLiteral("barReminder"));
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    QPalette colours = palette();
    colours.setColor(QPalette::Window, QColor(255, 244, 200));
    colours.setColor(QPalette::WindowText, Qt::black);
    setPalette(colours);

    lblReminder = new QLabel(this);
    lblReminder->setObjectName(QStringLiteral("lblReminder"));
    lblReminder->setWordWrap(true);
    lblReminder->setTextFormat(Qt::PlainText);
    cmdView = new QPushButton(this);
    cmdView->setObjectName(QStringLiteral("cmdViewReminder"));
    cmdView->setAutoDefault(false);
    cmdNotNow = new QPushButton(this);
    cmdNotNow->setObjectName(QStringLiteral("cmdNotNow"));
    cmdNotNow->setAutoDefault(false);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 4, 8, 4);
    layout->addWidget(lblReminder, 1);
    layout->addWidget(cmdView);
    layout->addWidget(cmdNotNow);
    connect(cmdView, &QPushButton::clicked, this, guarded(this, &ReminderBar::view));
    connect(cmdNotNow, &QPushButton::clicked, this, guarded(this, &ReminderBar::notNow));
    retranslate();
    hide();
}

int ReminderBar::check(const QDateTime &now)
{
    m_now = now;
    const std::vector<ProvisionalReminder> due = m_reminders.due(m_session.db(), now);
    const bool another = !due.empty() && (!m_current || m_current->BBBookingID != due.front().BBBookingID);
    if (due.empty())
        m_current.reset();
    else
        m_current = due.front();
    m_waiting = due.empty() ? 0 : int(due.size()) - 1;
    retranslate();
    setVisible(m_current.has_value());
    if (another)
        Q_EMIT reminderShown(m_current->BBBookingID);
    return int(due.size());
}

void ReminderBar::view()
{
    if (!m_current)
        return;
    const ProvisionalReminder reminder = *m_current;
    if (m_openBooking)
        m_openBooking(reminder.BBBookingID, reminder.firstRoomId);
    // What the person did in the editor is their answer.
    m_reminders.answered(m_session.db(), reminder.BBBookingID);
    check(m_now);
}

void ReminderBar::notNow()
{
    if (!m_current)
        return;
    const Changes changes = m_reminders.postpone(m_session.db(), m_current->BBBookingID, m_now);
    if (!changes.isEmpty())
        m_session.publish(changes);
    check(m_now);
}

void ReminderBar::retranslate()
{
    cmdView->setText(getString(5993, QStringLiteral("View the booking")));
    cmdNotNow->setText(getString(5994, QStringLiteral("Not now")));
    if (!m_current) {
        lblReminder->clear();
        return;
    }
    QString text = getString(1989, QStringLiteral("Booking Reminder - ")) + m_current->text() + QLatin1Char('\n')
                   + getString(1988, QStringLiteral("This is a reminder for one of your bookings. Do you want to view it "
                                                    "now and possibly make some changes?"));
    if (m_waiting > 0)
        text += QLatin1Char(' ') + getString(5995, QStringLiteral("(%1 more waiting)")).arg(m_waiting);
    lblReminder->setText(text);
}

void ReminderBar::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QFrame::changeEvent(event);
}

} // namespace fenlark
