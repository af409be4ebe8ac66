#pragma once

// fenlark-server as a process of its own beside the benchmarks, so that what is
// measured in the benchmark's process is the desk (or the clients) alone.
#include <QCoreApplication>
#include <QDir>
#include <QProcess>

namespace fenlark::bench {

class ServerProcess {
public:
    explicit ServerProcess(const QString &store)
    {
        m_process.start(QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../fenlark-server")),
                        {QStringLiteral("serve"), QStringLiteral("--db"), store});
        QByteArray said;
        while (!said.contains('\n') && m_process.waitForReadyRead(10000))
            said += m_process.readAllStandardOutput();
        if (said.startsWith("listening on "))
            port = static_cast<quint16>(said.mid(13).trimmed().toUInt());
    }
    ~ServerProcess()
    {
        m_process.kill();
        m_process.waitForFinished();
    }
    ServerProcess(const ServerProcess &) = delete;
    ServerProcess &operator=(const ServerProcess &) = delete;

    quint16 port = 0;   // 0 when it did not start

private:
    QProcess m_process;
};

} // namespace fenlark::bench
