#pragma once

#include "bookings/provisional.h"

#include <QDateTime>
#include <QFrame>

#include <functional>
#include <optional>

class QLabel;
class QPushButton;

namespace fenlark {

class Session;

// The reminder of provisional bookings whose hold has run out: a bar in the main
// window's layout, not a dialog, so the calendar stays in view and the click the
// person is making goes where it was meant. It names the guest and the arrival;
// "View the booking" opens it, "Not now" puts the hold four hours on. Either
// answer rests the reminder for the session unless the booking changes; the next
// one due, if any, takes its place at once.
class ReminderBar : public QFrame {
    Q_OBJECT

public:
    // openBooking opens the editor on a booking's room and returns when it closes.
    ReminderBar(Session &session, std::function<void(qint32 bbBookingId, qint32 bbRoomId)> openBooking,
                QWidget *parent = nullptr);

    // Looks for the reminders due (the main window's tick); shows the first, or
    // hides when none is due. Returns how many are due.
    int check(const QDateTime &now = QDateTime::currentDateTime());
    // The reminder on show.
    const std::optional<ProvisionalReminder> &current() const { return m_current; }

    QLabel *lblReminder = nullptr;
    QPushButton *cmdView = nullptr;
    QPushButton *cmdNotNow = nullptr;

Q_SIGNALS:
    // Another booking's reminder came up (not the one already on show).
    void reminderShown(qint32 bbBookingId);

protected:
    void changeEvent(QEvent *event) override;

private:
    void view();
    void notNow();
    void retranslate();

    Session &m_session;
    std::function<void(qint32, qint32)> m_openBooking;
    ProvisionalReminders m_reminders;
    std::optional<ProvisionalReminder> m_current;
    int m_waiting = 0;   // due besides the one on show
    QDateTime m_now;
};

} // namespace fenlark
