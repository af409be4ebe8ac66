// The print dialog of the booking editor, the account screen's document printing,
// CreditNoteView and InvoiceView, driven as the desk drives them.
#include "accounts/accountrecords.h"
#include "reports/screens/accountdocuments.h"
#include "reports/screens/printchoose.h"
#include "shell/home.h"
#include "desk/propertygenerator.h"
#include "shell/session.h"
#include "support/recordingsink.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QtTest>

using namespace fenlark;

class TestDocumentScreens : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<Session> m_session;
    qint32 m_booking = 0, m_room = 0, m_account = 0;
    QStringList m_opened;

    Database &db() { return m_session->db(); }

    OpenFile recorder(bool works = true)
    {
        return [this, works](const QString &path) {
            m_opened << path;
            return works;
        };
    }

private Q_SLOTS:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        Home::setPath(m_dir->path());
        auto database = Database::open(m_dir->filePath("test.db"));
        PropertyGenerator::Options options = PropertyGenerator::demo();
        options.seed = 11;
        PropertyGenerator(options).generate(*database);
        m_session = std::make_unique<Session>(std::move(database), 0);
        m_booking = db().scalar("select bbbookingid from booking where status <> 'U' and (select count(*) from guest "
                                "where guest.bbbookingid = booking.bbbookingid) = 3 limit 1").toInt();
        QVERIFY(m_booking > 0);
        m_room = db().scalar("select bbroomid from guest where bbbookingid = ? order by bbguestid desc", {m_booking}).toInt();
        m_account = db().scalar("select bbaccountid from booking where bbbookingid = ?", {m_booking}).toInt();
        m_opened.clear();
    }

    void registrationForTheShownRoomThenTheOthersWhenTheUserAgrees()
    {
        for (const bool answer : {false, true}) {
            RecordingSink sink;
            sink.answer = answer;
            m_opened.clear();
            PrintChoose dialog(*m_session, m_booking, m_room);
            dialog.openFile = recorder();
            dialog.opRegistration->setChecked(true);
            QTest::mouseClick(dialog.cmdPrint, Qt::LeftButton);
            QCOMPARE(sink.asked.size(), 1);
            QCOMPARE(sink.asked[0].id, 1927);
            QCOMPARE(m_opened.size(), answer ? 3 : 1);
            QVERIFY(m_opened[0].endsWith(QString("-%1.docx").arg(m_room)));
            QVERIFY(sink.shown.isEmpty());
        }
    }

    void confirmationPutsTheBookersEmailOnTheClipboard()
    {
        RecordingSink sink;
        QGuiApplication::clipboard()->setText("before");
        PrintChoose dialog(*m_session, m_booking, m_room);
        dialog.openFile = recorder();
        QVERIFY(dialog.opConfirmation->isChecked());
        QTest::mouseClick(dialog.cmdPrint, Qt::LeftButton);
        QCOMPARE(m_opened.size(), 1);
        QVERIFY(m_opened[0].endsWith("Confirmation" + QString("%1").arg(m_booking, 6, 10, QChar('0')) + ".docx"));
        const QString email = db().scalar("select email from client join booking on madeby = bbclientid where bbbookingid = ?",
                                          {m_booking}).toString();
        QCOMPARE(QGuiApplication::clipboard()->text(), email);
        QVERIFY(sink.asked.isEmpty());
    }

    void summaryGoesToTheTextEditorAndAMissingEditorIsSaid()
    {
        RecordingSink sink;
        PrintChoose dialog(*m_session, m_booking, m_room);
        dialog.openFile = recorder(false);
        dialog.opWordpad->setChecked(true);
        QVERIFY(!dialog.ckPdf->isEnabled());
        QTest::mouseClick(dialog.cmdPrint, Qt::LeftButton);
        QCOMPARE(m_opened, QStringList{m_dir->filePath("VMWordPad.txt")});
        QCOMPARE(sink.shown.size(), 1);
        QCOMPARE(sink.shown[0].id, 1279);
    }

    void letterOfABookingDeletedMeanwhileSaysSoAndOpensNothing()
    {
        RecordingSink sink;
        PrintChoose dialog(*m_session, m_booking, m_room);
        dialog.openFile = recorder();
        db().execute("delete from booking where bbbookingid = ?", {m_booking});
        QTest::mouseClick(dialog.cmdPrint, Qt::LeftButton);
        QVERIFY(m_opened.isEmpty());
        QCOMPARE(sink.shown.size(), 1);
        QCOMPARE(sink.shown[0].id, 2294);
    }

    void accountDocumentIsMadeOnceThenOpenedUnlessRemade()
    {
        RecordingSink sink;
        db().execute("update account set proformano = 5 where bbaccountid = ?", {m_account});
        QVERIFY(printAccountDocument(*m_session, DocumentType::ProForma, m_account, 5, false, false, recorder()));
        const QString path = m_dir->filePath("invoices/Pro000005.xlsx");
        QCOMPARE(m_opened, QStringList{path});
        QFile::resize(path, 3);
        QVERIFY(printAccountDocument(*m_session, DocumentType::ProForma, m_account, 5, false, false, recorder()));
        QCOMPARE(QFileInfo(path).size(), 3);
        QVERIFY(printAccountDocument(*m_session, DocumentType::ProForma, m_account, 5, true, false, recorder()));
        QVERIFY(QFileInfo(path).size() > 3);
        QVERIFY(sink.shown.isEmpty());
    }

    void accountScreensButtonsPrintTheAccountsOwnDocument()
    {
        RecordingSink sink;
        QVERIFY(!printAccountDocument(*m_session, "I", m_account, true, false, recorder()));
        QCOMPARE(sink.shown.size(), 1);
        QCOMPARE(sink.shown[0].id, 6847);
        QVERIFY(!printAccountDocument(*m_session, "X", m_account, true, false, recorder()));
        QCOMPARE(sink.shown[1].id, 6849);
        db().execute("update account set proformano = 8 where bbaccountid = ?", {m_account});
        QVERIFY(printAccountDocument(*m_session, "P", m_account, true, false, recorder()));
        QCOMPARE(m_opened, QStringList{m_dir->filePath("invoices/Pro000008.xlsx")});
        QVERIFY(m_opened.size() == 1 && sink.shown.size() == 2);
    }

    void creditNoteTheLedgerDoesNotHoldIsRefused()
    {
        RecordingSink sink;
        QVERIFY(!openCreditNote(*m_session, 77, recorder()));
        QCOMPARE(sink.shown.size(), 1);
        QCOMPARE(sink.shown[0].id, 6842);
        QVERIFY(m_opened.isEmpty());
    }

    void invoiceViewListsTheStoredItemsWithTheirTotal()
    {
        Invoice invoice;
        invoice.InvoiceNo = 9;
        invoice.BBAccountID = m_account;
        invoice.update(db());
        const std::tuple<QString, QString, double, double> items[] = {
            {"2026-07-02", "Wine", 3, 33.34}, {"2026-07-01", "(Bk ID 4) Smith", 1, 1200}};
        for (const auto &[date, text, qty, price] : items) {
            InvoiceItem item;
            item.BBInvoiceID = invoice.BBInvoiceID;
            item.ItemDate = date;
            item.Description = text;
            item.Qty = qty;
            item.Price = price;
            item.update(db());
        }
        InvoiceView view(*m_session, 9);
        QAbstractItemModelTester tester(view.gdItems->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        const QAbstractItemModel *model = view.gdItems->model();
        QCOMPARE(model->rowCount(), 2);
        QCOMPARE(model->headerData(3, Qt::Horizontal).toString(), QString("QTY"));
        QCOMPARE(model->index(0, 2).data().toString(), QString("(Bk ID 4) Smith"));
        QCOMPARE(model->index(1, 3).data().toString(), QString("3.0"));
        QCOMPARE(model->index(1, 4).data().toString(), QString("33.34"));
        QCOMPARE(model->index(1, 5).data().toString(), QString("100.02"));
        QCOMPARE(view.lblTotal->text(), QString("Total: 1300.02"));
    }
};

QTEST_MAIN(TestDocumentScreens)
#include "test_documentscreens.moc"
