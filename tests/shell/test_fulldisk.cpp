#include "shell/backup.h"
#include "shell/database.h"
#include "shell/databasefiles.h"
#include "shell/home.h"
#include "support/filebytes.h"

#include <QProcess>
#include <QStandardPaths>
#include <QtTest>

#include <cstdio>

using namespace fenlark;

namespace {

constexpr auto ChildFunction = "fullDiskChild";

// Fills the disk under folder until a write fails, then gives back `room` bytes.
void fillDisk(const QString &folder, qint64 room)
{
    QFile filler(folder + QStringLiteral("/filler"));
    filler.open(QIODevice::WriteOnly);
    const QByteArray block(4096, '\0');
    while (filler.write(block) == block.size() && filler.flush()) {
    }
    filler.close();
    filler.resize(std::max<qint64>(0, QFileInfo(filler).size() - room));
}

} // namespace

// A disk that really fills: a small tmpfs mounted in a mount namespace of the
// test's own, so it needs no free mount point and goes away with the test.
class TestFullDisk : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aFullDiskFailsTheWriteAndTheBackupAndKeepsEverything()
    {
        const QString unshare = QStandardPaths::findExecutable(QStringLiteral("unshare"));
        if (unshare.isEmpty())
            QSKIP("unshare is not installed");
        QTemporaryDir dir;
        QProcess child;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("FENLARK_FULLDISK_DIR"), dir.path());
        child.setProcessEnvironment(environment);
        child.setProcessChannelMode(QProcess::MergedChannels);
        child.start(unshare, {QStringLiteral("--mount"), QStringLiteral("--map-root-user"), QStringLiteral("sh"), QStringLiteral("-c"),
                              QStringLiteral("mount -t tmpfs -o size=3m fenlark \"$0\" && echo mounted && exec \"$1\" %1").arg(ChildFunction),
                              dir.path(), QCoreApplication::applicationFilePath()});
        QVERIFY(child.waitForFinished(120000));
        const QByteArray out = child.readAll();
        if (!out.contains("mounted"))
            QSKIP(qPrintable(QStringLiteral("this machine lets no test mount a small disk: ") + QString::fromLocal8Bit(out).trimmed()));
        QVERIFY2(child.exitCode() == 0 && out.contains("full disk handled"), out.constData());
    }

    // The test above, inside its namespace with the small disk mounted on the folder.
    void fullDiskChild()
    {
        const QString folder = qEnvironmentVariable("FENLARK_FULLDISK_DIR");
        if (folder.isEmpty())
            QSKIP("run by aFullDiskFailsTheWriteAndTheBackupAndKeepsEverything");
        Home::setPath(folder);
        auto db = Database::open(folder + QStringLiteral("/Veldmoor.db"));
        {
            Transaction tx(*db);
            for (int i = 0; i < 50; ++i)
                db->execute("insert into preference (prefcode, prefvalue) values (?, ?)", {QString("P%1").arg(i), QString(200, 'x')});
            tx.commit();
        }
        QVERIFY(Backup::backupDatabase(*db, 0));
        const QDir backups(getBackupDir());
        const QString newest = backups.filePath(Backup::rotationFileName(0, 1));
        const QByteArray newestBefore = digest(newest);
        QVERIFY(!newestBefore.isEmpty());
        const QStringList backupsBefore = backups.entryList(QDir::Files, QDir::Name);
        const QByteArray before = db->scalar("select group_concat(prefcode) from preference").toByteArray();

        fillDisk(folder, 16 * 1024);
        try {
            Transaction tx(*db);
            for (int i = 0; i < 400; ++i)
                db->execute("insert into preference (prefcode, prefvalue) values (?, ?)", {QString("F%1").arg(i), QString(2000, 'y')});
            tx.commit();
            QFAIL("the disk did not fill");
        } catch (const DatabaseError &e) {
            QCOMPARE(e.cause(), DatabaseError::DiskFull);
        }
        QCOMPARE(db->transactionDepth(), 0);
        QCOMPARE(db->scalar("select group_concat(prefcode) from preference").toByteArray(), before);
        QCOMPARE(db->quickCheck(), QString());

        // A backup on the full disk fails without a half-written file and
        // without touching the backups already there.
        QVERIFY(!Backup::backupDatabase(*db, 0, QDate::currentDate().addMonths(1)));
        QCOMPARE(backups.entryList(QDir::Files, QDir::Name), backupsBefore);
        QCOMPARE(digest(newest), newestBefore);

        // Room again: the same connection writes.
        QVERIFY(QFile::remove(folder + QStringLiteral("/filler")));
        {
            Transaction tx(*db);
            db->execute("insert into preference (prefcode, prefvalue) values ('after', '1')");
            tx.commit();
        }
        QCOMPARE(db->scalar("select count(*) from preference where prefcode = 'after'").toInt(), 1);
        std::printf("full disk handled\n");
        std::fflush(stdout);
    }
};

QTEST_GUILESS_MAIN(TestFullDisk)
#include "test_fulldisk.moc"
