#include "shell/database.h"
#include "shell/textcompare.h"
#include "support/testdatabase.h"

#include <QtTest>

using namespace fenlark;

class TestTextCompare : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void foldCaseFoldsEveryAlphabetAndKeepsWildcards_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("folded");
        const auto u = [](const char *text) { return QString::fromUtf8(text); };
        QTest::newRow("ASCII") << u("McDONALD") << u("mcdonald");
        QTest::newRow("Spanish") << u("ÑÚÑEZ") << u("ñúñez");
        QTest::newRow("decomposed accent is composed") << u("E\u0301MILE") << u("émile");
        QTest::newRow("Greek final sigma") << u("ΣΟΦΊΑΣ Σοφίας") << u("σοφίασ σοφίασ");
        QTest::newRow("Cyrillic") << u("ИВАНОВА") << u("иванова");
        QTest::newRow("wildcards and quotes pass") << u("100%_A'\"") << u("100%_a'\"");
        QTest::newRow("no case at all") << u("王小明") << u("王小明");
    }

    void foldCaseFoldsEveryAlphabetAndKeepsWildcards()
    {
        QFETCH(QString, text);
        QFETCH(QString, folded);
        QCOMPARE(foldCase(text), folded);
        // SQL sees the same function.
        TestDatabase t;
        QCOMPARE(t.db().scalar("select foldcase(?)", {text}).toString(), folded);
    }

    void foldCaseInSqlKeepsNull()
    {
        TestDatabase t;
        QVERIFY(t.db().scalar("select foldcase(null)").isNull());
        QCOMPARE(t.db().scalar("select foldcase(12)").toString(), QString("12"));
    }
};

QTEST_GUILESS_MAIN(TestTextCompare)
#include "test_textcompare.moc"
