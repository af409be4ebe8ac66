#include "accounts/accountrecords.h"
#include "bookings/bookingrecords.h"
#include "clients/clientrecords.h"
#include "clients/screens/clientdelete.h"
#include "clients/screens/clienthistorydialog.h"
#include "clients/screens/companylk.h"
#include "clients/screens/sourcecodemt.h"
#include "clients/screens/viewclient.h"
#include "shell/session.h"
#include "support/clientfixture.h"
#include "support/guitestmain.h"
#include "support/recordingsink.h"
#include "support/testdatabase.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QtTest>

using namespace fenlark;

namespace {

class RecordingListener : public ChangeListener {
public:
    void applyChanges(const Changes &changes) override { heard.push_back(changes); }
    std::vector<Changes> heard;
};

} // namespace

class TestClientScreens : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TestDatabase> m_t;
    std::unique_ptr<Session> m_session;
    RecordingListener m_listener;

    Database &db() { return m_session->db(); }

private Q_SLOTS:
    void init()
    {
        m_t = std::make_unique<TestDatabase>();
        m_t->db().execute("insert into ratesheet (BBRateSheetID, RateCode) values (4, 'CORP'), (7, 'AGENT')");
        m_session = std::make_unique<Session>(Database::open(m_t->file("test.db")), 0);
        m_session->setUser(UserStruct::autoAdmin());
        m_listener.heard.clear();
        m_session->setChangeListener(&m_listener);
    }

    void cleanup()
    {
        m_session.reset();
        m_t.reset();
    }

    void newClientIsTypedInAndSavedThroughOK()
    {
        RecordingSink sink;
        ViewClient editor(*m_session);
        QAbstractItemModelTester extrasTester(editor.extrasModel(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        editor.load(0);
        editor.show();
        QVERIFY(QTest::qWaitForWindowExposed(&editor));
        QCOMPARE(editor.windowTitle(), QString("Add new client."));
        QCOMPARE(editor.cboClientType->currentText(), QString("Individual"));
        QCOMPARE(editor.cboRateSheet->currentText(), QString("RACK"));
        QVERIFY(editor.outCreated->text().isEmpty());

        QTest::keyClicks(editor.txtFirstName, "Zo");
        editor.txtFirstName->insert("ë");
        QTest::keyClicks(editor.txtSurname, "Nkosi");
        QTest::keyClicks(editor.txtEmail, "zoe@");
        QVERIFY(editor.lblEmailWarning->isVisibleTo(&editor));
        QTest::keyClicks(editor.txtEmail, "example.org");
        QVERIFY(!editor.lblEmailWarning->isVisibleTo(&editor));
        editor.tbClient->setCurrentIndex(1);
        QTest::keyClicks(editor.txtAdd1, "12 Long St");
        editor.tbClient->setCurrentIndex(2);
        QTest::mouseClick(editor.cmdFieldAddButton, Qt::LeftButton);
        QTest::keyClicks(QApplication::focusWidget(), "082 555 0101");
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        editor.tbClient->setCurrentIndex(3);
        editor.cboRateSheet->setCurrentIndex(editor.cboRateSheet->findText("CORP"));
        QTest::keyClicks(editor.txtNotes, "Prefers ground floor");

        sink.answer = false;
        QTest::mouseClick(editor.cmdOKButton, Qt::LeftButton);
        QCOMPARE(sink.askedIds(), QList<int>{6907});
        QVERIFY(editor.isVisible());
        QVERIFY(!editor.ChangesMade());
        QCOMPARE(db().scalar("select count(*) from client").toInt(), 0);

        sink.answer = true;
        QTest::mouseClick(editor.cmdOKButton, Qt::LeftButton);
        QVERIFY(!editor.isVisible());
        QVERIFY(editor.ChangesMade());
        QCOMPARE(editor.FullName(), QString("Zoë Nkosi"));
        QCOMPARE(editor.ShortName(), QString("Nko"));
        QCOMPARE(editor.BBRateSheetID(), qint16(4));
        Client saved;
        QVERIFY(saved.fetch(db(), editor.NewClientID()));
        QCOMPARE(saved.Email, QString("zoe@example.org"));
        QCOMPARE(saved.Add1, QString("12 Long St"));
        QCOMPARE(saved.Notes, QString("Prefers ground floor"));
        QCOMPARE(db().scalar("select fieldtype || '=' || fieldvalue from clientextra where bbclientid = ?", {saved.BBClientID}).toString(),
                 QString("P=082 555 0101"));
        QCOMPARE(m_listener.heard.size(), std::size_t(1));
        QCOMPARE(m_listener.heard.front().clients(), QSet<qint32>{saved.BBClientID});
    }

    void cancelStoresNothingAndARetiredClientSaysSo()
    {
        RecordingSink sink;
        const qint32 id = addPerson(db(), "Sid", "Smith");
        db().execute("update client set active = 'N' where bbclientid = ?", {id});
        ViewClient editor(*m_session);
        editor.load(id);
        QCOMPARE(editor.windowTitle(), QString("Client Details (ID %1) - Retired").arg(id));
        editor.txtSurname->setText("Changed");
        editor.cmdFieldAdd();
        QTest::mouseClick(editor.cmdCancel, Qt::LeftButton);
        QVERIFY(!editor.ChangesMade());
        QCOMPARE(db().scalar("select surname from client where bbclientid = ?", {id}).toString(), QString("Smith"));
        QCOMPARE(db().scalar("select count(*) from clientextra").toInt(), 0);

        editor.load(999);
        QCOMPARE(sink.shownIds(), QList<int>{6903});
        QVERIFY(editor.txtSurname->text().isEmpty());
    }

    void retiringChoosesBothClientsThenMovesEverything()
    {
        RecordingSink sink;
        const qint32 old = addPerson(db(), "Pat", "Old");
        const qint32 keeper = addPerson(db(), "Pat", "Keeper");
        Booking b;
        b.MadeBy = old;
        b.update(db());
        ClientDelete dialog(*m_session);
        QList<qint32> picks{old, old, keeper};
        dialog.chooseClient = [&](QWidget *) { return picks.takeFirst(); };
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));

        QTest::mouseClick(dialog.cmdRetireButton, Qt::LeftButton);
        QCOMPARE(sink.shownIds(), QList<int>{6955});
        QTest::mouseClick(dialog.cmdChooseRetired, Qt::LeftButton);
        QCOMPARE(dialog.outRetired->text(), QString("Pat Old - "));
        QTest::mouseClick(dialog.cmdChooseReplacement, Qt::LeftButton);
        QTest::mouseClick(dialog.cmdRetireButton, Qt::LeftButton);
        QCOMPARE(sink.shownIds().last(), 6957);
        QVERIFY(sink.asked.isEmpty());
        QTest::mouseClick(dialog.cmdChooseReplacement, Qt::LeftButton);
        QCOMPARE(dialog.outReplacement->text(), QString("Pat Keeper - "));

        sink.answer = true;
        QTest::mouseClick(dialog.cmdRetireButton, Qt::LeftButton);
        QCOMPARE(sink.askedIds(), QList<int>{6959});
        QVERIFY(sink.asked.front().defaultNo);
        QCOMPARE(sink.shownIds().last(), 6961);
        QCOMPARE(db().scalar("select madeby from booking").toInt(), keeper);
        QVERIFY(dialog.outRetired->text().isEmpty());
        QCOMPARE(dialog.retiredId(), 0);
        QCOMPARE(m_listener.heard.size(), std::size_t(1));
        QVERIFY(m_listener.heard.front().everythingChanged());
        QVERIFY(QApplication::overrideCursor() == nullptr);

        dialog.setRetired(404);
        QCOMPARE(sink.shownIds().last(), 6953);
        QCOMPARE(dialog.retiredId(), 0);
    }
};

FENLARK_GUI_TEST_MAIN(TestClientScreens)
#include "test_clientscreens.moc"
