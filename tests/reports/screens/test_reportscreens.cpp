// The report dialogs and the desk's way of running a report: the permission,
// the criteria, the workbook opened, the clipboard when it cannot be.
#include "reports/reporttsv.h"
#include "reports/screens/clientreportdialog.h"
#include "reports/screens/reportcriteriadialog.h"
#include "reports/screens/reportlauncher.h"
#include "reports/screens/transactionreportdialog.h"
#include "reports/reportfixture.h"
#include "shell/session.h"
#include "support/recordingsink.h"

#include <QClipboard>
#include <QComboBox>
#include <QDateEdit>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest>

using namespace fenlark;

namespace {

const QDate Today(2026, 3, 18);

} // namespace

class TestReportScreens : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TestDatabase> m_t;
    std::unique_ptr<Session> m_session;

    // A launcher that answers the criteria dialog with the report's defaults
    // (or cancels) and records what it was asked to open.
    struct Desk {
        ReportLauncher launcher;
        int asked = 0;
        QStringList opened;
        bool opens = true;
        bool cancel = false;

        explicit Desk(Session &session) : launcher(session, nullptr)
        {
            launcher.askCriteria = [this](QWidget *, int number, const ReportCriteria &defaults) -> std::optional<ReportCriteria> {
                ++asked;
                if (cancel)
                    return std::nullopt;
                ReportCriteria criteria = defaults;
                if (number != report::CalendarPrintout)
                    criteria = defaultCriteria(number, Today, defaults.orientation);
                return criteria;
            };
            launcher.openFile = [this](const QString &path) {
                opened << path;
                return opens;
            };
        }
    };

private Q_SLOTS:
    void init()
    {
        m_t = std::make_unique<TestDatabase>();
        reportfixture::seed(m_t->db());
        m_session = std::make_unique<Session>(Database::open(m_t->db().path()), 0);
        m_session->setUser(UserStruct::autoAdmin());
        QGuiApplication::clipboard()->clear();
    }

    void cleanup()
    {
        m_session.reset();
        m_t.reset();
    }

    void criteriaDialogAsksForWhatTheReportReads_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<bool>("withTo");
        QTest::addColumn<bool>("withOrientation");
        QTest::addColumn<QString>("fromCaption");
        QTest::newRow("calendar printout") << 1 << true << true << "From : ";
        QTest::newRow("booking summary") << 2 << true << false << "From : ";
        QTest::newRow("in-house") << 6 << false << false << "From : ";
        QTest::newRow("debtors") << 8 << false << false << " Up to Date";
    }

    void criteriaDialogAsksForWhatTheReportReads()
    {
        QFETCH(int, number);
        QFETCH(bool, withTo);
        QFETCH(bool, withOrientation);
        QFETCH(QString, fromCaption);
        ReportCriteriaDialog dialog(number, defaultCriteria(number, Today));
        QCOMPARE(dialog.windowTitle(), reportName(number));
        QCOMPARE(dialog.dpFrom->date(), defaultCriteria(number, Today).from);
        QCOMPARE(dialog.lblFrom->text(), fromCaption);
        QCOMPARE(!dialog.dpTo->isHidden(), withTo);
        QCOMPARE(!dialog.lblTo->isHidden(), withTo);
        QCOMPARE(!dialog.opLandscape->isHidden(), withOrientation);
        QCOMPARE(dialog.criteria().to.isValid(), withTo);
    }

    void anOrientationBringsItsDays()
    {
        ReportCriteriaDialog dialog(report::CalendarPrintout, defaultCriteria(report::CalendarPrintout, Today));
        QVERIFY(dialog.opPortrait->isChecked());
        QCOMPARE(dialog.dpTo->date(), QDate(2026, 3, 31));
        dialog.opLandscape->click();
        QCOMPARE(dialog.dpFrom->date(), Today);
        QCOMPARE(dialog.dpTo->date(), Today.addDays(13));
        QCOMPARE(dialog.criteria().orientation, QLatin1Char('L'));
        dialog.opPortrait->click();
        QCOMPARE(dialog.dpFrom->date(), QDate(2026, 3, 1));
        QCOMPARE(dialog.criteria().orientation, QLatin1Char('P'));
    }

    void runRefusesFromAfterToAndStaysOpen()
    {
        RecordingSink sink;
        ReportCriteriaDialog dialog(report::Extras, defaultCriteria(report::Extras, Today));
        dialog.dpFrom->setDate(QDate(2026, 3, 20));
        dialog.dpTo->setDate(QDate(2026, 3, 19));
        dialog.cmdRun->click();
        QCOMPARE(sink.shownIds(), QList<int>{2145});
        QCOMPARE(dialog.result(), int(QDialog::Rejected));
        dialog.dpTo->setDate(QDate(2026, 3, 20));
        dialog.cmdRun->click();
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        QCOMPARE(dialog.criteria().from, dialog.criteria().to);
    }

    void clientDialogNarrowsByTypeAndByAFieldWithAValue()
    {
        ClientReportDialog dialog(defaultCriteria(report::Clients, Today));
        QCOMPARE(dialog.cboClientType->count(), 5);
        QCOMPARE(dialog.criteria().clientType, QString());
        dialog.cboClientType->setCurrentIndex(2);
        dialog.cboFieldType->setCurrentIndex(dialog.cboFieldType->findData(QStringLiteral("N")));
        QCOMPARE(dialog.criteria().fieldType, QString());   // no value yet: no field
        dialog.txtValue->setText(QStringLiteral(" British "));
        const ReportCriteria criteria = dialog.criteria();
        QCOMPARE(criteria.clientType, QStringLiteral("C"));
        QCOMPARE(criteria.fieldType, QStringLiteral("N"));
        QCOMPARE(criteria.fieldValue, QStringLiteral("British"));
    }

    void transactionDialogRefusesWhatItCannotRead_data()
    {
        QTest::addColumn<QString>("tranNo");
        QTest::addColumn<QString>("amount");
        QTest::addColumn<int>("refusal");
        QTest::newRow("a number with letters") << "12a" << "" << 6224;
        QTest::newRow("an amount with letters") << "" << "12x" << 6225;
        QTest::newRow("both filled") << "12" << "-1,500.50" << 0;
        QTest::newRow("neither") << "" << "" << 0;
    }

    void transactionDialogRefusesWhatItCannotRead()
    {
        QFETCH(QString, tranNo);
        QFETCH(QString, amount);
        QFETCH(int, refusal);
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
        RecordingSink sink;
        TransactionReportDialog dialog(defaultCriteria(report::Transactions, Today));
        QCOMPARE(dialog.dpStart->date(), QDate(2026, 2, 1));
        dialog.txtTranNo->setText(tranNo);
        dialog.txtAmount->setText(amount);
        dialog.cboTranType->setCurrentIndex(2);
        dialog.cmdRun->click();
        QCOMPARE(sink.shownIds(), refusal ? QList<int>{refusal} : QList<int>{});
        QCOMPARE(dialog.result(), int(refusal ? QDialog::Rejected : QDialog::Accepted));
        if (refusal == 0) {
            const ReportCriteria criteria = dialog.criteria();
            QCOMPARE(criteria.tranType, QStringLiteral("PMT"));
            QCOMPARE(criteria.tranNo.has_value(), !tranNo.isEmpty());
            QCOMPARE(criteria.amount.has_value(), !amount.isEmpty());
            if (criteria.amount)
                QCOMPARE(*criteria.amount, -1500.5);
        }
    }

    void typedAmountsFollowTheLocale_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("amount");   // NaN: refused
        const double refused = std::nan("");
        QTest::newRow("en: grouped") << "en_GB" << "1,500.50" << 1500.5;
        QTest::newRow("en: plain") << "en_GB" << " -20 " << -20.0;
        QTest::newRow("es: grouped with a decimal comma") << "es_ES" << "1.500,50" << 1500.5;
        QTest::newRow("es: a decimal point") << "es_ES" << "1500.50" << 1500.5;
        QTest::newRow("es: a decimal comma") << "es_ES" << "1500,5" << 1500.5;
        QTest::newRow("letters") << "en_GB" << "abc" << refused;
        QTest::newRow("two points") << "en_GB" << "1.2.3" << refused;
    }

    void typedAmountsFollowTheLocale()
    {
        QFETCH(QString, locale);
        QFETCH(QString, text);
        QFETCH(double, amount);
        QLocale::setDefault(QLocale(locale));
        const std::optional<double> read = readTypedAmount(text);
        QLocale::setDefault(QLocale::c());
        if (std::isnan(amount))
            QVERIFY(!read);
        else
            QCOMPARE(read.value_or(0), amount);
    }

    void aUserWithoutTheRightIsToldAndAskedNothing()
    {
        RecordingSink sink;
        UserStruct clerk;
        clerk.UserName = QStringLiteral("clerk");
        m_session->setUser(clerk);
        Desk desk(*m_session);
        desk.launcher.run(report::BookingSummary);
        QCOMPARE(desk.asked, 0);
        QCOMPARE(sink.shown.size(), 1);
        QCOMPARE(sink.shown.first().title, QStringLiteral("Permission denied."));
        QVERIFY(!QFileInfo::exists(ReportLauncher::folder()));
    }

    void aReportIsSavedInTheReportsFolderAndOpened()
    {
        RecordingSink sink;
        Desk desk(*m_session);
        desk.launcher.run(report::ArrivalsDepartures);
        QCOMPARE(desk.asked, 1);
        QCOMPARE(desk.opened.size(), 1);
        const QFileInfo file(desk.opened.first());
        QCOMPARE(file.absolutePath(), QDir(ReportLauncher::folder()).absolutePath());
        QVERIFY2(file.fileName().startsWith(QStringLiteral("Arrivals-Departures 20")), qPrintable(file.fileName()));
        QVERIFY(file.size() > 0);
        QVERIFY(sink.shown.isEmpty());
        QCOMPARE(QGuiApplication::clipboard()->text(), QString());
    }

    void withNothingToOpenItTheReportGoesToTheClipboard()
    {
        RecordingSink sink;
        Desk desk(*m_session);
        desk.opens = false;
        desk.launcher.run(report::InHouse);
        ReportCriteria criteria = defaultCriteria(report::InHouse, Today);
        QCOMPARE(QGuiApplication::clipboard()->text(), reportTsv(*runReport(m_session->db(), report::InHouse, criteria)));
        QCOMPARE(sink.shownIds(), QList<int>{2149});
        QCOMPARE(sink.shown.first().kind, UserMessage::Information);
    }

    void aFolderThatCannotBeWrittenSendsTheReportToTheClipboard()
    {
        RecordingSink sink;
        QFile blocker(ReportLauncher::folder());
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        blocker.close();
        Desk desk(*m_session);
        desk.launcher.run(report::SecurityAudit);
        QVERIFY(desk.opened.isEmpty());
        QVERIFY(QGuiApplication::clipboard()->text().startsWith(QStringLiteral("Security Audit between 01/03/2026")));
        QCOMPARE(sink.shownIds(), QList<int>{2149});
    }

    void aCancelledDialogRunsNothing()
    {
        Desk desk(*m_session);
        desk.cancel = true;
        desk.launcher.run(report::CalendarPrintout);
        QCOMPARE(desk.asked, 1);
        QVERIFY(desk.opened.isEmpty());
        QCOMPARE(m_session->getPreference(QStringLiteral("REPORT1")), QString());
    }

    void theCalendarPrintoutStartsInItsLastOrientation()
    {
        Desk desk(*m_session);
        QChar offered;
        desk.launcher.askCriteria = [&](QWidget *, int number, const ReportCriteria &defaults) {
            offered = defaults.orientation;
            ReportCriteria criteria = defaultCriteria(number, Today, QLatin1Char('L'));
            return std::optional<ReportCriteria>(criteria);
        };
        desk.launcher.run(report::CalendarPrintout);
        QCOMPARE(offered, QLatin1Char('P'));
        QCOMPARE(m_session->getPreference(QStringLiteral("REPORT1")), QStringLiteral("L"));
        desk.launcher.run(report::CalendarPrintout);
        QCOMPARE(offered, QLatin1Char('L'));
    }
};

QTEST_MAIN(TestReportScreens)
#include "test_reportscreens.moc"
