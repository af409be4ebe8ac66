#include "accounts/accountrecords.h"
#include "bookings/bookingrecords.h"
#include "clients/clientrecords.h"
#include "clients/screens/clientdelete.h"
#include "clients/screens/clienthistorydialog.h"
#include "clients/screens/companylk.h"
#include "clients/screens/sourcecodemt.h"
#include "clients/screens/viewclient.h"
#include "shell/session.h"
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

qint32 addClient(Database &db, const QString &first, const QString &surname, const QString &company = {})
{
    Client c;
    c.ClientType = company.isEmpty() ? "I" : "C";
    c.FirstName = first;
    c.Surname = surname;
    c.Company = company;
    c.Active = "Y";
    c.CreatedOn = "C";
    c.DateCreated = QDateTime(QDate(2024, 2, 29), QTime(14, 5));
    c.update(db);
    return c.BBClientID;
}

void doubleClickCell(QTableView *view, int row, int column = 0)
{
    const QPoint at = view->visualRect(view->model()->index(row, column)).center();
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, at);
}

void clickCell(QTableView *view, int row, int column = 1)
{
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(view->model()->index(row, column)).center());
}

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

    void storedClientAsksBeforeItsNameChangesAndTakesACompany()
    {
        RecordingSink sink;
        const qint32 id = addClient(db(), "Sam", "Smith", "Acme");
        ClientExtra fax;
        fax.BBClientID = id;
        fax.FieldType = "F";
        fax.FieldValue = "021 555 0199";
        fax.update(db());
        ClientScreens screens;
        QStringList lookedUp;
        screens.company = [&](QWidget *, const QString &typed) {
            lookedUp << typed;
            return std::optional<CompanyDetails>(CompanyDetails{"Acme Holdings", "021 555 0000", "1 Main Rd", "Cape Town", "4123456789", 7});
        };
        ViewClient editor(*m_session, screens);
        editor.load(id);
        editor.show();
        QVERIFY(QTest::qWaitForWindowExposed(&editor));
        QCOMPARE(editor.windowTitle(), QString("Client Details (ID %1)").arg(id));
        QCOMPARE(editor.outCreated->text(), QString("29 Feb 2024 14:05"));
        QCOMPARE(editor.outCreatedOn->text(), QString("Cell"));
        QCOMPARE(editor.extrasModel()->rowCount(), 1);

        QTest::mouseClick(editor.cmdCompanyLkButton, Qt::LeftButton);
        QCOMPARE(lookedUp, QStringList{"Acme"});
        QCOMPARE(editor.txtCompany->text(), QString("Acme Holdings"));
        QCOMPARE(editor.txtVATNo->text(), QString("4123456789"));
        QCOMPARE(editor.cboRateSheet->currentText(), QString("AGENT"));
        QCOMPARE(sink.shownIds(), QList<int>{6909});

        // Deleting a field asks which one first, then drops the row from the grid only.
        editor.tbClient->setCurrentIndex(2);
        QTest::mouseClick(editor.cmdFieldDeleteButton, Qt::LeftButton);
        QCOMPARE(sink.shownIds().last(), 6911);
        clickCell(editor.gdExtra, 0, 2);
        QTest::mouseClick(editor.cmdFieldDeleteButton, Qt::LeftButton);
        QCOMPARE(sink.asked.last().text, QString("Delete Fax No - 021 555 0199?"));
        QCOMPARE(editor.extrasModel()->rowCount(), 0);
        QCOMPARE(db().scalar("select count(*) from clientextra").toInt(), 1);

        // The company changed: asked whether this is a new client; No keeps the key.
        sink.answer = false;
        QTest::mouseClick(editor.cmdOKButton, Qt::LeftButton);
        QCOMPARE(sink.askedIds().last(), 6905);
        QVERIFY(editor.ChangesMade());
        QCOMPARE(editor.NewClientID(), id);
        QCOMPARE(db().scalar("select company || '/' || bbratesheetid from client where bbclientid = ?", {id}).toString(),
                 QString("Acme Holdings/7"));
        QCOMPARE(db().scalar("select count(*) from clientextra").toInt(), 0);
    }

    void cancelStoresNothingAndARetiredClientSaysSo()
    {
        RecordingSink sink;
        const qint32 id = addClient(db(), "Sid", "Smith");
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

    void accountsAndLedgerOpenTheirScreens()
    {
        const qint32 id = addClient(db(), "Ann", "Jones");
        Account open;
        open.InvoiceTo = id;
        open.Status = "O";
        open.Reference = "Conference";
        open.update(db());
        Booking b;
        b.MadeBy = id;
        b.BBAccountID = open.BBAccountID;
        b.FromDate = QDate(2026, 7, 1);
        b.ToDate = QDate(2026, 7, 3);
        b.update(db());
        Account closed;
        closed.InvoiceTo = id;
        closed.Status = "C";
        closed.update(db());
        ClientTran payment;
        payment.BBClientID = id;
        payment.TranType = "PMT";
        payment.TranNo = 12;
        payment.Amount = -150;
        payment.TranDate = QDate(2026, 7, 3);
        payment.update(db());
        ClientTran journal = payment;
        journal.BBClientTranID = 0;
        journal.TranType = "JNL";
        journal.TranDate = QDate(2026, 7, 4);
        journal.update(db());

        QList<qint32> accountsOpened;
        QStringList documents;
        int statements = 0;
        ClientScreens screens;
        screens.account = [&](QWidget *, qint32 account) { accountsOpened << account; };
        screens.ledgerDocument = [&](QWidget *, const ClientTran &row) {
            documents << row.TranType;
            return true;
        };
        screens.statement = [&](QWidget *, qint32) { ++statements; };
        ViewClient editor(*m_session, screens);
        QAbstractItemModelTester accountsTester(editor.accountsModel(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        QAbstractItemModelTester ledgerTester(editor.ledgerModel(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        editor.load(id);
        editor.show();
        editor.tbClient->setCurrentIndex(4);
        QVERIFY(QTest::qWaitForWindowExposed(&editor));

        QAbstractItemModel *accounts = editor.gdAccounts->model();
        QCOMPARE(accounts->rowCount(), 4);
        QCOMPARE(accounts->index(0, 0).data().toInt(), open.BBAccountID);
        QCOMPARE(accounts->index(0, 2).data().toString(), QString("Uninvoiced"));
        QCOMPARE(accounts->index(1, 1).data().toString().trimmed(),
                 QString("01/07/2026  Ann Jones  BkID %1").arg(b.BBBookingID));
        QCOMPARE(accounts->index(2, 2).data().toString(), QString("Closed"));
        QCOMPARE(accounts->index(3, 1).data().toString().trimmed(), QString("Error: could not find any data"));
        doubleClickCell(editor.gdAccounts, 1, 1);
        QCOMPARE(accountsOpened, QList<qint32>{open.BBAccountID});

        QAbstractItemModel *ledger = editor.gdClientTran->model();
        QCOMPARE(ledger->index(0, 1).data().toString(), QString("JNL"));
        QCOMPARE(ledger->index(1, 3).data().toString(), QString("-150.00"));
        doubleClickCell(editor.gdClientTran, 0);
        doubleClickCell(editor.gdClientTran, 1);
        QCOMPARE(documents, QStringList{"PMT"});
        QVERIFY(!editor.cmdAddClientTran->isVisibleTo(&editor));
        QTest::mouseClick(editor.cmdStatement, Qt::LeftButton);
        QCOMPARE(statements, 1);
    }

    void retiringChoosesBothClientsThenMovesEverything()
    {
        RecordingSink sink;
        const qint32 old = addClient(db(), "Pat", "Old");
        const qint32 keeper = addClient(db(), "Pat", "Keeper");
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

    void historyListsTheChosenClientAndCopiesIt()
    {
        RecordingSink sink;
        const qint32 cara = addClient(db(), "Cara", "Naidoo");
        Booking b;
        b.MadeBy = addClient(db(), "Olu", "Okafor");
        b.FromDate = QDate(2026, 5, 4);
        b.ToDate = QDate(2026, 5, 6);
        b.update(db());
        Guest g;
        g.BBBookingID = b.BBBookingID;
        g.BBRoomID = 9;
        g.BBClientID = b.MadeBy;
        g.BBClient2ID = cara;
        g.update(db());

        QList<QPair<qint32, qint32>> opened;
        ClientHistory dialog(*m_session, [&](qint32 booking, qint32 room) { opened.append({booking, room}); });
        QAbstractItemModelTester tester(dialog.model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        QTest::keyClicks(dialog.search->txtSurname, "Nai");
        clickCell(dialog.search->gdClient, 0);
        QCOMPARE(dialog.clientId(), cara);
        QCOMPARE(dialog.gdBookings->model()->rowCount(), 1);
        QCOMPARE(dialog.gdBookings->model()->index(0, 3).data().toString(), QString("2"));
        QCOMPARE(dialog.gdBookings->model()->headerData(3, Qt::Horizontal).toString(), QString("No. Nights"));

        doubleClickCell(dialog.gdBookings, 0);
        QCOMPARE(opened, (QList<QPair<qint32, qint32>>{{b.BBBookingID, 9}}));

        QTest::mouseClick(dialog.cmdClipboardButton, Qt::LeftButton);
        QVERIFY(QApplication::clipboard()->text().startsWith(QString("Client History for (%1) Cara Naidoo\n\n").arg(cara)));
        QCOMPARE(sink.shownIds(), QList<int>{6974});

        db().execute("delete from guest");
        doubleClickCell(dialog.gdBookings, 0);
        QCOMPARE(sink.shownIds().last(), 6976);
        QCOMPARE(opened.size(), 1);
    }

    void companyLookupNarrowsAsTypedAndReadsTheRowBack()
    {
        Client a;
        a.Company = "Karoo Adventures";
        a.PhoneNo = "023";
        a.Add1 = "Main Rd";
        a.Add2 = "Prince Albert";
        a.BBRateSheetID = 4;
        a.update(db());
        a.BBClientID = 0;
        a.PhoneNo = "024";
        a.update(db());
        a.BBClientID = 0;
        a.Company = "Kalahari Trails";
        a.update(db());

        CompanyLk lookup(db(), "Ka");
        QAbstractItemModelTester tester(lookup.model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        lookup.show();
        QVERIFY(QTest::qWaitForWindowExposed(&lookup));
        QCOMPARE(lookup.gdCompany->model()->rowCount(), 3);
        QTest::keyClicks(lookup.txtCompanySearch, "r");
        QCOMPARE(lookup.gdCompany->model()->rowCount(), 2);
        doubleClickCell(lookup.gdCompany, 1);
        QVERIFY(lookup.details());
        QCOMPARE(lookup.details()->PhoneNo, QString("024"));
        QCOMPARE(lookup.details()->Add2, QString("Prince Albert"));
        QCOMPARE(lookup.details()->BBRateSheetID, qint16(4));
    }

    void sourcesAreRenamedFromTheTwoLists()
    {
        RecordingSink sink;
        for (const char *source : {"Webb", "Web", "Webb"}) {
            Booking b;
            b.BookingType = "P";
            b.Source = QString::fromLatin1(source);
            b.update(db());
        }
        SourceCodeMT dialog(*m_session);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        QCOMPARE(dialog.lstReplace->count(), 2);
        QCOMPARE(dialog.lstReplace->item(1)->text(), QString("Webb ( 2 )"));

        QTest::mouseClick(dialog.cmdReplaceButton, Qt::LeftButton);
        QCOMPARE(sink.shownIds(), QList<int>{6989});
        dialog.lstReplace->setCurrentRow(1);
        QTest::mouseClick(dialog.cmdReplaceButton, Qt::LeftButton);
        QCOMPARE(sink.shown.last().text, QString("Please select the item that replaces Webb"));
        dialog.lstTarget->setCurrentRow(0);
        sink.answer = true;
        QTest::mouseClick(dialog.cmdReplaceButton, Qt::LeftButton);
        QCOMPARE(sink.asked.last().text, QString("You have chosen to replace: \n   Webb\nwith\n   Web\n\nAre you sure you want to continue?"));
        QCOMPARE(dialog.lstReplace->count(), 1);
        QCOMPARE(dialog.lstReplace->item(0)->text(), QString("Web ( 3 )"));
        QCOMPARE(db().scalar("select count(*) from audit").toInt(), 1);

        db().execute("delete from booking");
        dialog.refill();
        QCOMPARE(sink.shown.last().text, QString("No source items were found."));
    }
};

FENLARK_GUI_TEST_MAIN(TestClientScreens)
#include "test_clientscreens.moc"
