// The upgrade dialog offscreen, against the reference server on loopback.
#include "server/httpfront.h"
#include "server/referenceserver.h"
#include "shell/config.h"
#include "synch/screens/dlgupgrade.h"
#include "synch/upgrade.h"

#include "support/guitestmain.h"
#include "support/recordingsink.h"
#include "support/testdatabase.h"

#include <QDir>
#include <QPlainTextEdit>
#include <QPushButton>

using namespace fenlark;
using namespace fenlark::server;

namespace {

constexpr qint32 Bbid = 23456;

class Rig {
public:
    Rig()
    {
        t.db().execute(QStringLiteral("insert into bbsetup (BBID, BBName, Password) values (?, 'Reed House', 'pw')"), {Bbid});
        writeConfig(QStringLiteral("Database"), t.db().path());
        writeConfig(QStringLiteral("BackupDir"), t.file(QStringLiteral("backups")));
        store = std::make_unique<ReferenceServer>(serverDir.filePath(QStringLiteral("server.db")), QStringLiteral("dlgupgrade"));
        store->createProperty(Bbid, QStringLiteral("pw"), QStringLiteral("Reed House"));
        front = std::make_unique<HttpFront>(serverDir.filePath(QStringLiteral("server.db")));
        writeConfig(QStringLiteral("Server"), QStringLiteral("127.0.0.1:%1").arg(front->listen(QHostAddress::LocalHost, 0)));
    }

    void offer(const QString &version, const QByteArray &bytes = QByteArray("!<arch>\ndebian-binary\n"))
    {
        store->offerUpgrade({version, QStringLiteral("fenlark_%1_amd64.deb").arg(version), QStringLiteral("Keyboard calendar."), bytes});
    }

    TestDatabase t;
    QTemporaryDir serverDir;
    std::unique_ptr<ReferenceServer> store;
    std::unique_ptr<HttpFront> front;
};

QPushButton *upgradeButton(DlgUpgrade &dialog)
{
    return dialog.findChild<QPushButton *>(QStringLiteral("cmdUpgrade"));
}

} // namespace

class TestDlgUpgrade : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void upgradeShowsTheVersionAndHowToInstallIt()
    {
        Rig rig;
        rig.offer(QStringLiteral("42.0.0"));
        RecordingSink sink;
        DlgUpgrade dialog;
        dialog.show();
        QVERIFY(!dialog.findChild<QPlainTextEdit *>(QStringLiteral("txtInstructions"))->isVisible());
        QTest::mouseClick(upgradeButton(dialog), Qt::LeftButton);
        QVERIFY(sink.shown.isEmpty());
        QVERIFY(dialog.isVisible());
        QVERIFY(dialog.findChild<QPlainTextEdit *>(QStringLiteral("txtInstructions"))->isVisible());
        QVERIFY(dialog.instructions().contains(QStringLiteral("Fenlark 42.0.0 is ready to install.")));
        QVERIFY(dialog.instructions().contains(QStringLiteral("Keyboard calendar.")));
        QVERIFY(QFileInfo::exists(SoftwareUpgrade::upgradeFolder() + QStringLiteral("/fenlark_42.0.0_amd64.deb")));
        QVERIFY(!upgradeButton(dialog)->isEnabled());
    }

    void aRefusedCheckIsShownAndTheDialogStays()
    {
        Rig rig;
        RecordingSink sink;
        DlgUpgrade dialog;
        dialog.show();
        QTest::mouseClick(upgradeButton(dialog), Qt::LeftButton);
        QCOMPARE(sink.shownIds(), QList<int>{7302});
        QVERIFY(sink.shown.first().text.contains(QStringLiteral("No upgrade is available.")));
        QVERIFY(dialog.isVisible());
        QVERIFY(!QFileInfo::exists(rig.t.file(QStringLiteral("backups"))));
    }

    void nothingNewerIsSaidWithoutBackupOrDownload()
    {
        Rig rig;
        rig.offer(QStringLiteral(FENLARK_VERSION));
        RecordingSink sink;
        DlgUpgrade dialog;
        dialog.show();
        QTest::mouseClick(upgradeButton(dialog), Qt::LeftButton);
        QCOMPARE(sink.shownIds(), QList<int>{7326});
        QVERIFY(!QFileInfo::exists(rig.t.file(QStringLiteral("backups"))));
        QVERIFY(!QFileInfo::exists(SoftwareUpgrade::upgradeFolder()));
    }

    void aFailedDownloadSaysSoTwiceAndClosesTheDialog()
    {
        Rig rig;
        rig.offer(QStringLiteral("42.0.0"), QByteArray("not a package"));
        RecordingSink sink;
        DlgUpgrade dialog;
        dialog.show();
        QTest::mouseClick(upgradeButton(dialog), Qt::LeftButton);
        QCOMPARE(sink.shownIds(), (QList<int>{7317, 7307}));
        QVERIFY(sink.shown.last().text.endsWith(QStringLiteral("please call veldmoor on 021 555 0100.")));
        QCOMPARE(dialog.result(), int(QDialog::Rejected));
        QVERIFY(!dialog.isVisible());
    }
};

FENLARK_GUI_TEST_MAIN(TestDlgUpgrade)
#include "test_dlgupgrade.moc"
