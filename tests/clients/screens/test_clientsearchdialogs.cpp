#include "clients/clientrecords.h"
#include "clients/screens/clientsearchdialogs.h"
#include "support/clientfixture.h"
#include "support/testdatabase.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QtTest>

using namespace fenlark;

namespace {

class Owner : public IClientSearch {
public:
    void doubleClick() override { ++doubleClicks; }
    void singleClick() override { ++singleClicks; }
    int doubleClicks = 0;
    int singleClicks = 0;
};

QPoint rowCentre(QTableView *view, int row)
{
    return view->visualRect(view->model()->index(row, 1)).center();
}

void doubleClickRow(QTableView *view, int row)
{
    // A real double-click is a press/release, then a double-click event.
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, rowCentre(view, row));
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, rowCentre(view, row));
}

} // namespace

class TestClientSearchDialogs : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void typingNarrowsTheListAndEmptyBoxesClearIt()
    {
        TestDatabase t;
        const qint32 sam = addPerson(t.db(), "Sam", "Smith");
        const qint32 ann = addPerson(t.db(), "Ann", "Smyth", "");
        addPerson(t.db(), "Old", "Smith", "", "N");
        addPerson(t.db(), "", "", "Smithers Ltd");
        Owner owner;
        ucClientSearch search;
        QAbstractItemModelTester tester(search.model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        search.initialise(&owner, t.db());
        search.show();
        QVERIFY(QTest::qWaitForWindowExposed(&search));

        QTest::keyClicks(search.txtSurname, "sm");
        QCOMPARE(search.model()->rowCount(), 2);
        QCOMPARE(search.model()->index(0, 0).data().toInt(), ann);
        QVERIFY(search.gdClient->isColumnHidden(2));
        QVERIFY(search.txtSurname->hasFocus());
        QTest::keyClicks(search.txtSurname, "i");
        QCOMPARE(search.model()->rowCount(), 1);
        QCOMPARE(search.model()->index(0, 0).data().toInt(), sam);
        QTest::keyClicks(search.txtCompany, "smi");
        QCOMPARE(search.model()->rowCount(), 0);
        search.txtCompany->clear();
        QTest::keyClick(search.txtSurname, Qt::Key_Backspace);
        QTest::keyClick(search.txtSurname, Qt::Key_Backspace);
        QTest::keyClick(search.txtSurname, Qt::Key_Backspace);
        QCOMPARE(search.txtSurname->text(), QString());
        QCOMPARE(search.model()->rowCount(), 0);
        QCOMPARE(search.MadeBy(), 0);
    }

    void namesAndSuggestedType()
    {
        TestDatabase t;
        Owner owner;
        ucClientSearch search;
        search.initialise(&owner, t.db());
        QVERIFY(!search.hasName());
        QCOMPARE(search.FirstName(), QString());
        QCOMPARE(search.ClientType(), QString("I"));
        search.txtFirstName->setText("sam");
        search.txtSurname->setText("o'brien");
        QVERIFY(search.hasName());
        QCOMPARE(search.FirstName(), QString("Sam"));
        QCOMPARE(search.Surname(), QString("O'brien"));
        search.txtCompany->setText("acme");
        QCOMPARE(search.Company(), QString("Acme"));
        QCOMPARE(search.ClientType(), QString("C"));
        search.txtbbclientid->setText("12");
        search.txtFirstName->clear();
        search.txtSurname->clear();
        search.txtCompany->clear();
        QVERIFY(!search.hasName());
    }

    void clickAndDoubleClickReachTheOwner()
    {
        TestDatabase t;
        addPerson(t.db(), "Sam", "Smith");
        const qint32 ann = addPerson(t.db(), "Ann", "Smyth");
        Owner owner;
        ucClientSearch search;
        QAbstractItemModelTester tester(search.model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        search.initialise(&owner, t.db());
        search.resize(500, 300);
        search.show();
        QVERIFY(QTest::qWaitForWindowExposed(&search));
        QTest::keyClicks(search.txtSurname, "sm");
        doubleClickRow(search.gdClient, 0);
        QCOMPARE(owner.doubleClicks, 1);
        QVERIFY(owner.singleClicks >= 1);
        QCOMPARE(search.MadeBy(), ann);
        QCOMPARE(search.ShortName(), QString("Smy"));
    }

    void singleClickModeLetsTheChoiceGo()
    {
        TestDatabase t;
        const qint32 sam = addPerson(t.db(), "Sam", "Smith");
        Owner owner;
        ucClientSearch search;
        search.initialise(&owner, t.db());
        QVERIFY(!search.isSingleClickMode());
        search.singleClick();
        QCOMPARE(search.gdClient->toolTip(), QString("Click to select client"));
        search.resize(500, 300);
        search.show();
        QVERIFY(QTest::qWaitForWindowExposed(&search));
        QTest::keyClicks(search.txtSurname, "smith");
        QVERIFY(!search.cmdDeselect->isEnabled());
        QTest::mouseClick(search.gdClient->viewport(), Qt::LeftButton, {}, rowCentre(search.gdClient, 0));
        QCOMPARE(search.MadeBy(), sam);
        QVERIFY(search.cmdDeselect->isEnabled());
        QCOMPARE(owner.singleClicks, 1);
        QTest::mouseClick(search.cmdDeselect, Qt::LeftButton);
        QCOMPARE(search.MadeBy(), 0);
        QVERIFY(!search.cmdDeselect->isEnabled());
        QVERIFY(search.txtSurname->hasFocus());
    }

    void clientSearchResults()
    {
        TestDatabase t;
        const qint32 sam = addPerson(t.db(), "Sam", "Smith");
        {
            ClientSearch dialog(t.db());
            QCOMPARE(dialog.BBClientID(), -1);
            QVERIFY(dialog.lblInstructions->text().startsWith("If you want to add a new client"));
            dialog.show();
            QVERIFY(QTest::qWaitForWindowExposed(&dialog));
            QVERIFY(dialog.search->txtSurname->hasFocus());
            dialog.close();
            QCOMPARE(dialog.BBClientID(), -1);
        }
        {
            ClientSearch dialog(t.db());
            dialog.show();
            QTest::mouseClick(dialog.cmdNew, Qt::LeftButton);
            QCOMPARE(dialog.BBClientID(), 0);
            QCOMPARE(dialog.result(), int(QDialog::Accepted));
        }
        {
            ClientSearch dialog(t.db());
            dialog.show();
            QTest::mouseClick(dialog.cmdExit, Qt::LeftButton);
            QCOMPARE(dialog.BBClientID(), -1);
        }
        {
            ClientSearch dialog(t.db());
            dialog.show();
            QVERIFY(QTest::qWaitForWindowExposed(&dialog));
            QTest::keyClicks(dialog.search->txtSurname, "smi");
            doubleClickRow(dialog.search->gdClient, 0);
            QCOMPARE(dialog.BBClientID(), sam);
            QVERIFY(!dialog.isVisible());
        }
    }

    void choosingWithoutNew()
    {
        TestDatabase t;
        const qint32 sam = addPerson(t.db(), "Sam", "Smith");
        ClientDSearch dialog(t.db());
        QAbstractItemModelTester tester(dialog.search->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        QCOMPARE(dialog.BBClientID(), 0);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        QVERIFY(!dialog.cmdNew->isVisible());
        QCOMPARE(dialog.lblInstructions->text(),
                 QString("Search for an existing client by typing in a few letters in the box below."));
        QTest::keyClicks(dialog.search->txtSurname, "s");
        doubleClickRow(dialog.search->gdClient, 0);
        QCOMPARE(dialog.BBClientID(), sam);
    }

};

QTEST_MAIN(TestClientSearchDialogs)
#include "test_clientsearchdialogs.moc"
