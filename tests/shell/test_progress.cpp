#include "shell/backup.h"
#include "shell/config.h"
#include "shell/databasefiles.h"
#include "shell/progress.h"
#include "shell/progressline.h"
#include "support/testdatabase.h"

#include <QDir>
#include <QtTest>

#include <cstdio>

using namespace fenlark;

namespace {

// What a stream received, read back from its temporary file.
QByteArray contents(std::FILE *file)
{
    std::fflush(file);
    std::rewind(file);
    QByteArray all;
    char buffer[256];
    while (const size_t n = std::fread(buffer, 1, sizeof buffer, file))
        all.append(buffer, qsizetype(n));
    return all;
}

} // namespace

class TestProgress : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aStopIsFinalAndTheWatcherIsNotAskedAgain()
    {
        int asked = 0;
        Progress progress([&](qint64 done, qint64, const QString &) {
            ++asked;
            return done < 2;
        });
        QVERIFY(progress.step(1, 5));
        QVERIFY(!progress.step(2, 5));
        QVERIFY(!progress.step(3, 5));
        QVERIFY(progress.stopped());
        QCOMPARE(asked, 2);

        Progress unwatched;
        QVERIFY(unwatched.step(99, 1));
        QVERIFY(!unwatched.stopped());
    }

    void theLineIsDrawnOverItselfOnlyOnATerminal()
    {
        std::FILE *terminal = std::tmpfile();
        std::FILE *pipe = std::tmpfile();
        {
            ProgressLine line(terminal, true);
            ProgressLine quiet(pipe, false);
            for (qint64 done : {0, 1, 1, 2, 4})
                for (ProgressLine *l : {&line, &quiet})
                    QVERIFY(l->progress().step(done, 4, QStringLiteral("Copying")));
            line.progress().step(4, 4, QStringLiteral("Done"));
        }
        // One drawing per new percentage, each from the line's start, padded over
        // a longer line before it, and one line end at the close.
        QCOMPARE(contents(terminal), QByteArray("\rCopying    0%\rCopying   25%\rCopying   50%\rCopying  100%\n"));
        QCOMPARE(contents(pipe), QByteArray());
        std::fclose(terminal);
        std::fclose(pipe);

        QCOMPARE(ProgressLine::text(7, 0, "Nothing to count"), QString("Nothing to count    0%"));
        QCOMPARE(ProgressLine::text(12, 10, "Past the end"), QString("Past the end  100%"));
    }

    void theLineWipesWhatALongerTextLeft()
    {
        std::FILE *terminal = std::tmpfile();
        {
            ProgressLine line(terminal, true);
            line.progress().step(0, 2, QStringLiteral("A long description"));
            line.progress().step(1, 2, QStringLiteral("Short"));
        }
        QCOMPARE(contents(terminal), QByteArray("\rA long description    0%\rShort   50%             \n"));
        std::fclose(terminal);
    }

    void aBackupReportsEachFileAndAStopKeepsWhatWasMade()
    {
        TestDatabase t;
        t.db().execute("create table sample(x)");
        QList<qint64> seen;
        Progress all([&](qint64 done, qint64 total, const QString &what) {
            seen << done;
            return total == 6 && what == QStringLiteral("Backing up the database");
        });
        QVERIFY(Backup::backupDatabase(t.db(), 0, all, QDate(2026, 11, 23)));
        QCOMPARE(seen, (QList<qint64>{0, 1, 2, 3, 4, 5, 6}));
        const QDir dir(getBackupDir());
        QVERIFY(dir.exists(Backup::rotationFileName(0, 1)));

        // Stopped after the snapshot: the snapshot is thrown away and the backups
        // already made stay as they were.
        const QStringList before = dir.entryList(QDir::Files, QDir::Name);
        Progress early([](qint64 done, qint64, const QString &) { return done < 1; });
        QVERIFY(!Backup::backupDatabase(t.db(), 0, early, QDate(2026, 12, 1)));
        QCOMPARE(dir.entryList(QDir::Files, QDir::Name), before);
    }
};

QTEST_GUILESS_MAIN(TestProgress)
#include "test_progress.moc"
