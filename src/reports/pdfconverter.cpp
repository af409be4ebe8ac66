#include "reports/pdfconverter.h"

#include "reports/ooxmlpackage.h"
#include "shell/strings.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QUrl>

#include <cstdio>

namespace fenlark {

namespace {

constexpr int ConversionTimeoutMs = 120000;
// How often a conversion under way tells its watcher and hears a Cancel.
constexpr int WatchEveryMs = 100;

Refusal conversionFailed(const QString &document, const QString &reason)
{
    return Refusal(6832, QStringLiteral("LibreOffice could not turn %1 into a PDF (%2). The document itself was saved."), 6833,
                   QStringLiteral("Could not save as PDF"))
        .arg(QDir::toNativeSeparators(document))
        .arg(reason);
}

// One LibreOffice profile for the whole run: its first start is the slow one.
const QTemporaryDir &profile()
{
    static const QTemporaryDir dir(QDir::tempPath() + QStringLiteral("/fenlark-libreoffice-XXXXXX"));
    return dir;
}

} // namespace

QString libreOfficeProgram()
{
    if (qEnvironmentVariableIsSet("FENLARK_SOFFICE")) {
        const QString chosen = qEnvironmentVariable("FENLARK_SOFFICE");
        return QFileInfo(chosen).isExecutable() ? chosen : QString();
    }
    for (const char *name : {"soffice", "libreoffice"}) {
        const QString found = QStandardPaths::findExecutable(QString::fromLatin1(name));
        if (!found.isEmpty())
            return found;
    }
    return {};
}

Result<QString> convertToPdf(const QString &document, Progress &progress)
{
    const QString program = libreOfficeProgram();
    if (program.isEmpty())
        return Refusal(6830, QStringLiteral("Saving as PDF needs LibreOffice, which is not installed. The document was saved as %1."),
                       6831, QStringLiteral("LibreOffice is needed"))
            .arg(QDir::toNativeSeparators(document))
            .asInformation();
    const QFileInfo source(document);
    const QString target = source.dir().filePath(source.completeBaseName() + QStringLiteral(".pdf"));
    if (Outcome open = checkNotOpen(target); !open)
        return open.refusal();

    QTemporaryDir outDir(source.dir().filePath(QStringLiteral(".fenlark-pdf-XXXXXX")));
    if (!outDir.isValid() || !profile().isValid())
        return couldNotCreate(target);
    QProcess soffice;
    soffice.setProcessChannelMode(QProcess::MergedChannels);
    soffice.start(program, {QStringLiteral("-env:UserInstallation=") + QUrl::fromLocalFile(profile().path()).toString(),
                            QStringLiteral("--headless"), QStringLiteral("--norestore"), QStringLiteral("--convert-to"),
                            QStringLiteral("pdf"), QStringLiteral("--outdir"), outDir.path(), source.absoluteFilePath()});
    if (!soffice.waitForStarted())
        return conversionFailed(document, soffice.errorString());
    // The conversion says nothing of how far it is; the watcher sees the time it
    // may still take, and a stop ends LibreOffice at once. A watcher that lets
    // events through may see the process end first, hence the state check.
    const QString what = getString(6851, QStringLiteral("Saving as PDF"));
    QElapsedTimer clock;
    clock.start();
    while (soffice.state() != QProcess::NotRunning && !soffice.waitForFinished(WatchEveryMs)) {
        const bool stopped = !progress.step(clock.elapsed(), ConversionTimeoutMs, what);
        if (stopped || clock.elapsed() >= ConversionTimeoutMs) {
            soffice.kill();
            soffice.waitForFinished();
            if (stopped)
                return Refusal(6852, QStringLiteral("Saving as PDF was stopped. The document itself was saved as %1."), 6833,
                               QStringLiteral("Could not save as PDF"))
                    .arg(QDir::toNativeSeparators(document))
                    .asInformation();
            return conversionFailed(document, QStringLiteral("timed out"));
        }
    }
    progress.step(ConversionTimeoutMs, ConversionTimeoutMs, what);
    const QString made = QDir(outDir.path()).filePath(source.completeBaseName() + QStringLiteral(".pdf"));
    if (soffice.exitStatus() != QProcess::NormalExit || soffice.exitCode() != 0 || !QFileInfo(made).isFile()
        || QFileInfo(made).size() == 0) {
        const QString said = QString::fromLocal8Bit(soffice.readAll()).trimmed().section(QLatin1Char('\n'), -1);
        return conversionFailed(document, said.isEmpty() ? QStringLiteral("exit code %1").arg(soffice.exitCode()) : said);
    }
    if (std::rename(QFile::encodeName(made).constData(), QFile::encodeName(target).constData()) != 0)
        return couldNotCreate(target);
    return target;
}

} // namespace fenlark
