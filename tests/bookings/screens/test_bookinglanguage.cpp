#include "bookings/screens/confirmbooking.h"
#include "bookings/screens/viewbooking.h"
#include "shell/screens/dialogmessagesink.h"
#include "shell/strings.h"
#include "support/guitestmain.h"
#include "support/screendesk.h"

#include <QAbstractButton>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QTimer>

using namespace fenlark;

namespace {

const QDate Friday(2031, 7, 4);

qint32 bookRoom(ScreenDesk &desk, QDate arrival)
{
    ConfirmBooking dialog(*desk.session, desk.rates, {1}, arrival, 3);
    dialog.clientSearch->txtSurname->setText(QStringLiteral("Heron"));
    dialog.cmdOK();
    return dialog.saved().BBBookingID;
}

QStringList buttonTexts(const QMessageBox &box)
{
    QStringList texts;
    for (QAbstractButton *button : box.buttons())
        texts << button->text().remove(QLatin1Char('&'));
    texts.sort();
    return texts;
}

} // namespace

// The booking screens in Spanish: Qt's own words and the names of days and months
// follow the desk's language, not the machine's.
class TestBookingLanguage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { StringTable::instance().setLanguage(SpanishLanguage); }
    void cleanup() { StringTable::instance().setLanguage(EnglishLanguage); }

    void theEditorsDateBoxesNameDaysAndMonthsInTheDesksLanguage()
    {
        ScreenDesk desk;
        const qint32 id = bookRoom(desk, Friday);
        ViewBooking editor(*desk.session, desk.rates);
        QVERIFY(editor.load(id, 1));
        QCOMPARE(editor.dpFrom->text(), QStringLiteral("vie 04 jul 2031"));
        QCOMPARE(editor.dpTo->text(), QStringLiteral("lun 07 jul 2031"));
        // A date changed later is shown the same way.
        editor.dpTo->setDate(Friday.addDays(2));
        QCOMPARE(editor.dpTo->text(), QStringLiteral("dom 06 jul 2031"));
        QVERIFY(editor.dpReserved->text().startsWith(deskLocale().toString(editor.dpReserved->date(), QStringLiteral("ddd dd MMM yyyy"))));

        StringTable::instance().setLanguage(EnglishLanguage);
        ViewBooking english(*desk.session, desk.rates);
        QVERIFY(english.load(id, 1));
        QCOMPARE(english.dpFrom->text(), QStringLiteral("Fri 04 Jul 2031"));
    }

    void theNewBookingScreenNamesItsDatesInTheDesksLanguage()
    {
        ScreenDesk desk;
        ConfirmBooking dialog(*desk.session, desk.rates, {1, 2}, Friday, 3);
        QCOMPARE(dialog.findChild<QLabel *>(QStringLiteral("outArriving"))->text(), QStringLiteral("Llegada: vie 04 jul 2031"));
        QCOMPARE(dialog.findChild<QLabel *>(QStringLiteral("outLeaving"))->text(), QStringLiteral("Salida: lun 07 jul 2031"));
    }

    void theRatesQuestionAnswersSiOrNo()
    {
        ScreenDesk desk;
        const qint32 id = bookRoom(desk, QDate::currentDate().addYears(2));
        ViewBooking editor(*desk.session, desk.rates);
        QVERIFY(editor.load(id, 1));
        editor.txtnoadults->setText(QStringLiteral("1"));

        DialogMessageSink boxes;
        messages::setSink(&boxes);
        QString question;
        QStringList buttons;
        QTimer::singleShot(0, [&] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box)
                return;
            question = box->text();
            buttons = buttonTexts(*box);
            box->button(QMessageBox::No)->click();
        });
        const bool saved = editor.cmdSave();
        messages::setSink(nullptr);
        QVERIFY(saved);
        QCOMPARE(question, getString(5834, QString()));
        QVERIFY(question.startsWith(QStringLiteral("Se han cambiado datos")));
        QCOMPARE(buttons, (QStringList{QStringLiteral("No"), QStringLiteral("Sí")}));
        QCOMPARE(desk.db().scalar(QStringLiteral("select NoAdults from guest where BBBookingID = ?"), {id}).toInt(), 1);
    }
};

FENLARK_GUI_TEST_MAIN(TestBookingLanguage)
#include "test_bookinglanguage.moc"
