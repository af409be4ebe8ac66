#include "shell/desklayout.h"
#include "shell/home.h"
#include "shell/inifile.h"
#include "shell/screens/layoutkeeper.h"
#include "shell/screens/progressdialog.h"
#include "support/guitestmain.h"

#include <QDialog>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QProgressDialog>
#include <QPushButton>
#include <QThread>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QVBoxLayout>
#include <QtTest>

#include <memory>

using namespace fenlark;

namespace {

// A dialog with one list of three columns; the last one sized to its contents.
struct Sample {
    explicit Sample(const QString &name = QStringLiteral("dlgSample"))
    {
        dialog.setObjectName(name);
        list = new QTableWidget(2, 3, &dialog);
        list->setObjectName(QStringLiteral("gdList"));
        list->horizontalHeader()->setSectionResizeMode(2, QHeaderView::ResizeToContents);
        list->setItem(0, 2, new QTableWidgetItem(QStringLiteral("a fairly long text in the last column")));
        auto *layout = new QVBoxLayout(&dialog);
        layout->addWidget(list);
        dialog.resize(400, 250);
    }
    QDialog dialog;
    QTableWidget *list;
};

} // namespace

class TestDeskComforts : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QVERIFY(home.isValid());
        Home::setPath(home.path());
        QFile::remove(DeskLayout::path());
    }

    void aWindowComesBackAsItWasLeft()
    {
        LayoutKeeper keeper;
        int lastWidth = 0;
        {
            Sample first;
            first.dialog.show();
            QVERIFY(QTest::qWaitForWindowExposed(&first.dialog));
            first.dialog.resize(520, 330);
            first.list->setColumnWidth(0, 61);
            first.list->setColumnWidth(1, 157);
            lastWidth = first.list->columnWidth(2);
            first.dialog.close();
        }
        Sample second;
        second.dialog.show();
        QCOMPARE(second.dialog.size(), QSize(520, 330));
        QCOMPARE(second.list->columnWidth(0), 61);
        QCOMPARE(second.list->columnWidth(1), 157);
        QCOMPARE(second.list->columnWidth(2), lastWidth);   // sized to its contents, as before

        // Another window keeps its own layout.
        Sample other(QStringLiteral("dlgOther"));
        other.dialog.show();
        QCOMPARE(other.dialog.size(), QSize(400, 250));
        QVERIFY(other.list->columnWidth(1) != 157);
    }

    void withoutTheKeeperNothingIsKeptOrRestored()
    {
        {
            Sample first;
            first.dialog.show();
            first.dialog.resize(600, 400);
            first.dialog.close();
        }
        QVERIFY(!QFile::exists(DeskLayout::path()));
        DeskLayout::setColumnWidths(QStringLiteral("dlgSample.gdList"), {90, 91, 92});
        Sample second;
        second.dialog.show();
        QVERIFY(second.list->columnWidth(0) != 90);
    }

    void keptWidthsThatDoNotFitTheListAreIgnored_data()
    {
        QTest::addColumn<QString>("kept");
        QTest::newRow("not numbers") << "abc,def,ghi";
        QTest::newRow("another column count") << "80,90";
        QTest::newRow("a negative width") << "-5,100,100";
        QTest::newRow("an absurd width") << "100,100,99999";
        QTest::newRow("nothing") << "";
    }

    void keptWidthsThatDoNotFitTheListAreIgnored()
    {
        QFETCH(QString, kept);
        IniFile(DeskLayout::path()).write("Columns", "dlgSample.gdList", kept);
        QCOMPARE(DeskLayout::columnWidths("dlgSample.gdList", 3), QList<int>{});
        LayoutKeeper keeper;
        Sample sample;
        const int before = sample.list->columnWidth(0);
        sample.dialog.show();
        QCOMPARE(sample.list->columnWidth(0), before);
    }

    void anUnreadableGeometryLeavesTheWindowAsDesigned()
    {
        IniFile(DeskLayout::path()).write("Windows", "dlgSample", "not*base64!");
        QVERIFY(DeskLayout::geometry("dlgSample").isEmpty());
        LayoutKeeper keeper;
        Sample sample;
        sample.dialog.show();
        QCOMPARE(sample.dialog.size(), QSize(400, 250));
    }

    void quickWorkShowsNoProgressDialog()
    {
        QWidget parent;
        parent.show();
        {
            Progress progress = progressDialog("Work", &parent);
            for (int i = 0; i <= 10; ++i)
                QVERIFY(progress.step(i, 10, "Step"));
            auto *dialog = parent.findChild<QProgressDialog *>();
            QVERIFY(dialog);
            QVERIFY(!dialog->isVisible());
        }
        QVERIFY(!parent.findChild<QProgressDialog *>());   // gone with its Progress
    }

    void workOutlivingTheParentWindowGoesOnUnwatched()
    {
        auto parent = std::make_unique<QWidget>();
        parent->show();
        Progress progress = progressDialog("Work", parent.get());
        QVERIFY(progress.step(1, 10, "Step"));
        parent.reset();
        QVERIFY(progress.step(2, 10, "Step"));
    }

    void slowWorkShowsTheDialogAndCancelStopsTheWork()
    {
        QWidget parent;
        parent.show();
        Progress progress = progressDialog("Work", &parent);
        QElapsedTimer clock;
        clock.start();
        for (int i = 0; clock.elapsed() < ProgressDialogDelayMs + 300; ++i) {
            QVERIFY(progress.step(i, 1000, "Slow work"));
            QThread::msleep(60);
        }
        progress.step(20, 1000, "Slow work");
        auto *dialog = parent.findChild<QProgressDialog *>();
        QVERIFY(dialog->isVisible());
        QCOMPARE(dialog->labelText(), QString("Slow work"));
        QPushButton *cancel = dialog->findChild<QPushButton *>();
        QVERIFY(cancel);
        QCOMPARE(cancel->text(), QString("Cancel"));
        cancel->click();
        QThread::msleep(60);
        QVERIFY(!progress.step(21, 1000, "Slow work"));
        QVERIFY(progress.stopped());
    }

private:
    QTemporaryDir home;
};

FENLARK_GUI_TEST_MAIN(TestDeskComforts)
#include "test_deskcomforts.moc"
