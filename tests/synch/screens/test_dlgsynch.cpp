#include "synch/screens/dlgsynch.h"

#include "support/testdatabase.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QtTest>

using namespace fenlark;

class TestDlgSynch : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void startsReadyAndFollowsProgress()
    {
        TestDatabase t;
        DlgSynch dialog(t.db());
        auto *label = dialog.findChild<QLabel *>(QStringLiteral("lblProgress"));
        auto *button = dialog.findChild<QPushButton *>(QStringLiteral("cmdProgress"));
        QVERIFY(label && button);
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Synchronisation"));
        QCOMPARE(button->text(), QStringLiteral("Start Synchronisation"));
        QCOMPARE(label->text(), QStringLiteral("Are you ready to begin synchronisation?"));
        dialog.progress(QStringLiteral("Processing data..."));
        QCOMPARE(label->text(), QStringLiteral("Processing data..."));
        QVERIFY(!dialog.succeeded());
    }

    void newBookingNoticeShowsTheText()
    {
        DlgNewBooking notice(QStringLiteral("Client Name: Ngata\r\n"));
        QCOMPARE(notice.windowTitle(), QStringLiteral("New bookings"));
        QVERIFY(notice.findChild<QPlainTextEdit *>()->toPlainText().contains(QLatin1String("Ngata")));
        QVERIFY(notice.findChild<QPushButton *>(QStringLiteral("cmdExit")));
    }
};

QTEST_MAIN(TestDlgSynch)
#include "test_dlgsynch.moc"
