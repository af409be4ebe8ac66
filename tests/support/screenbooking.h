#pragma once

// Small steps the screens' tests share: a booking made the way the desk makes
// one (through the new-booking screen), and a click on a named button.

#include "bookings/screens/confirmbooking.h"
#include "support/screendesk.h"

#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

#include <vector>

// Books rooms from arrival for nights through the new-booking screen; the new
// booking's key, 0 when the screen refused.
inline qint32 bookRooms(ScreenDesk &desk, std::vector<qint32> rooms, const QString &surname = QStringLiteral("Heron"),
                        QDate arrival = QDate(2031, 7, 1), int nights = 3)
{
    fenlark::ConfirmBooking dialog(*desk.session, desk.rates, rooms, arrival, nights);
    dialog.clientSearch->txtSurname->setText(surname);
    dialog.cmdOK();
    return dialog.saved().BBBookingID;
}

// Clicks the push button of that object name inside dialog.
inline void click(QWidget &dialog, const char *button)
{
    QPushButton *b = dialog.findChild<QPushButton *>(QLatin1String(button));
    QVERIFY2(b, button);
    QTest::mouseClick(b, Qt::LeftButton);
}
