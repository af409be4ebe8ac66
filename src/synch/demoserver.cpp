#include "synch/demoserver.h"

#include "shell/config.h"
#include "shell/home.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>

#include <csignal>
#include <sys/prctl.h>

namespace fenlark {

QString demoServerDatabase()
{
    return Home::file(QStringLiteral("demo-server.db"));
}

QString startDemoServer(const QString &deskDatabasePath, QObject *parent, QString *error, const QString &programDir)
{
    const auto failWith = [&](const QString &why) {
        if (error)
            *error = why;
        return QString();
    };
    const QString program = QDir(programDir.isEmpty() ? QCoreApplication::applicationDirPath() : programDir)
                                .filePath(QStringLiteral("fenlark-server"));
    if (!QFileInfo(program).isExecutable())
        return failWith(QStringLiteral("%1 is not there").arg(program));

    auto *process = new QProcess;
    // The server lives as long as its owner; ending it first keeps QProcess quiet.
    QObject::connect(parent, &QObject::destroyed, [process] {
        process->kill();
        process->waitForFinished(2000);
        delete process;
    });
    // A desk that is killed or interrupted runs no destructor: the kernel ends the
    // server with it, so no orphan keeps the demo's files and port.
    process->setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });
    process->setProgram(program);
    process->setArguments({QStringLiteral("serve"), QStringLiteral("--db"), demoServerDatabase(), QStringLiteral("--port"),
                           QStringLiteral("0"), QStringLiteral("--seed"), deskDatabasePath});
    process->setProcessChannelMode(QProcess::SeparateChannels);
    process->start();
    if (!process->waitForStarted(5000))
        return failWith(QStringLiteral("fenlark-server did not start"));
    // The server says "listening on PORT" once it accepts connections.
    QByteArray said;
    while (!said.contains('\n') && process->waitForReadyRead(10000))
        said += process->readAllStandardOutput();
    const QByteArray line = said.trimmed();
    if (!line.startsWith("listening on ")) {
        const QString why = QString::fromUtf8(process->readAllStandardError()).trimmed();
        process->kill();
        return failWith(QStringLiteral("fenlark-server did not listen: ") + why);
    }
    const QString address = QStringLiteral("127.0.0.1:") + QString::fromLatin1(line.mid(13));
    writeConfig(QStringLiteral("Server"), address);
    return address;
}

} // namespace fenlark
