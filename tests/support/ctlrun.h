#pragma once

// fenlarkctl run as a script runs it: a separate process on a database file,
// JSON on stdout, a refusal on stderr with a non-zero exit.

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QString>
#include <QStringList>

struct CtlRun {
    int exitCode = -1;
    QJsonDocument document;
    QJsonObject json;   // the document's object, when it is one
    QString output;
    QString errors;
};

// fenlarkctl as the build lays it out beside the test programs; empty when it
// is not built there (a test then skips).
inline QString ctlProgram()
{
    const QString path = QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../fenlarkctl"));
    return QFileInfo(path).isExecutable() ? path : QString();
}

// Runs fenlarkctl with arguments on the database at dbPath, home as its home folder.
inline CtlRun runCtl(const QString &home, const QString &dbPath, QStringList arguments)
{
    arguments << QStringLiteral("--home") << home << QStringLiteral("--db") << dbPath;
    QProcess process;
    process.start(ctlProgram(), arguments);
    process.waitForFinished(60000);
    CtlRun run;
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.output = QString::fromUtf8(process.readAllStandardOutput());
    run.document = QJsonDocument::fromJson(run.output.toUtf8());
    run.json = run.document.object();
    run.errors = QString::fromUtf8(process.readAllStandardError()).trimmed();
    return run;
}

// For a test class's initTestCase: skips the whole class when fenlarkctl is not built.
#define FENLARK_REQUIRE_CTL()                                                                                          \
    do {                                                                                                               \
        if (ctlProgram().isEmpty())                                                                                    \
            QSKIP("fenlarkctl is not built beside the tests");                                                         \
    } while (false)
