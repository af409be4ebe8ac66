// Where Fenlark's own templates come from: an installed copy in the data folder
// before the one compiled into the program.
#include "reports/templates.h"
#include "shell/config.h"
#include "shell/datadir.h"

#include "support/testdatabase.h"

#include <QDir>
#include <QFile>
#include <QtTest>

using namespace fenlark;

class TestShippedTemplates : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { qunsetenv("FENLARK_DATA_DIR"); }

    void dataFolderLiesBesideTheProgramsBinFolder()
    {
        QCOMPARE(dataDirBeside(QStringLiteral("/usr/bin")), QStringLiteral("/usr/share/fenlark"));
        QCOMPARE(dataDirBeside(QStringLiteral("/opt/fenlark/bin/")), QStringLiteral("/opt/fenlark/share/fenlark"));
    }

    void aBuildTreeUsesTheCompiledInTemplates()
    {
        // The tests run from the build tree, which has no share/fenlark beside it.
        QVERIFY(installedDataDir().isEmpty());
        QCOMPARE(shippedTemplate(QStringLiteral("invoice"), QStringLiteral("xlsx")), QStringLiteral(":/templates/en/invoice.xlsx"));
        QVERIFY(shippedTemplate(QStringLiteral("invoice"), QStringLiteral("ods")).isEmpty());
    }

    void anInstalledTemplateComesFirstAndIsCopiedToTheHomeFolder()
    {
        TestDatabase t;
        QTemporaryDir data;
        QVERIFY(QDir().mkpath(data.filePath(QStringLiteral("templates/en"))));
        QFile house(data.filePath(QStringLiteral("templates/en/proforma.xlsx")));
        QVERIFY(house.open(QIODevice::WriteOnly));
        house.write("house style");
        house.close();
        qputenv("FENLARK_DATA_DIR", data.path().toLocal8Bit());

        QCOMPARE(shippedTemplate(QStringLiteral("proforma"), QStringLiteral("xlsx")), house.fileName());
        // A stem the data folder lacks still comes from the program itself.
        QCOMPARE(shippedTemplate(QStringLiteral("invoice"), QStringLiteral("xlsx")), QStringLiteral(":/templates/en/invoice.xlsx"));

        const QString copied = findTemplate(QStringLiteral("proforma"), 0, {QStringLiteral("xlsx")});
        QFile home(copied);
        QVERIFY(home.open(QIODevice::ReadOnly));
        QCOMPARE(home.readAll(), QByteArray("house style"));
    }

    void aDataFolderThatIsNotThereIsIgnored()
    {
        qputenv("FENLARK_DATA_DIR", "/nonexistent/fenlark-data");
        QVERIFY(installedDataDir().isEmpty());
        QCOMPARE(shippedTemplate(QStringLiteral("invoice"), QStringLiteral("xlsx")), QStringLiteral(":/templates/en/invoice.xlsx"));
    }
};

QTEST_GUILESS_MAIN(TestShippedTemplates)
#include "test_shippedtemplates.moc"
