#pragma once

#include "shell/refusal.h"
#include "synch/transport.h"

#include <QString>
#include <QStringList>

#include <functional>

namespace fenlark {

class HttpFetch;

// What the server offers once it has allowed an upgrade: the version, the
// package file under "/download" and its release notes.
struct UpgradeOffer {
    QString version;
    QString package;       // a plain file name, "fenlark_1.1.0_amd64.deb"
    QString notes;
    QString downloadUrl;   // where the package is fetched from
    bool newer = false;    // newer than the running program
};

// An upgrade made ready: the databases backed up, the package in the upgrade folder.
struct UpgradeDownload {
    UpgradeOffer offer;
    QString packagePath;
    QStringList backedUp;  // the database files backed up first
};

// The software upgrade. Fenlark never replaces its own program: the server is
// asked whether an upgrade is allowed (exactly "OK"), says what it offers, and the
// package is downloaded into the upgrade folder of the home folder for the system's
// package manager to install, after every configured database has been backed up.
class SoftwareUpgrade {
public:
    // The upgrade question reads one chunk of the reply, as much as this.
    static constexpr qint64 ReplyChunk = 2048;
    static constexpr qint64 OfferLimit = 64 * 1024;
    static constexpr qint64 PackageLimit = qint64(512) * 1024 * 1024;

    SoftwareUpgrade(HttpFetch &fetch, ServerLogin login);

    // Progress lines for the dialog ("Downloading new software...").
    void setProgress(std::function<void(const QString &)> progress) { m_progress = std::move(progress); }

    // Asks the server whether an upgrade is allowed. Only the exact reply "OK"
    // passes; an empty reply is a connection failure, any other is shown as the
    // reason of the refusal.
    Outcome check();
    // The server's answer to check(), as it came (at most one chunk).
    QString reply() const { return m_reply; }

    // The description of what the server offers, "/download/fenlark.json".
    Result<UpgradeOffer> fetchOffer();

    // Makes the upgrade folder afresh, backs up every configured database, then
    // downloads the offered package into the folder and checks that it is one.
    Result<UpgradeDownload> upgradeSoftware(const UpgradeOffer &offer);

    static QString offerUrl(const QString &server);
    // The folder the package goes to: <home>/upgrade.
    static QString upgradeFolder();

private:
    void progress(const QString &text);
    Refusal connectionFailure(int endingId, const QString &ending);

    HttpFetch &m_fetch;
    ServerLogin m_login;
    QString m_reply;
    std::function<void(const QString &)> m_progress;
};

// The login of the upgrade question: BBID and password of the first configured
// database (Database1 when several are configured, else the single one), with
// the Server of vmconfig.ini.
ServerLogin firstDatabaseLogin();

// The rotating backup of every configured database that exists; the paths backed up.
QStringList backupAllDatabases();

// The offer's description as the server writes it; empty version or a package
// name that is not a plain file name make it unreadable (a refusal).
Result<UpgradeOffer> parseOffer(const QByteArray &json, const QString &server);

// What the person at the desk is told once the package is ready: the version,
// the release notes, where it came from and lies, and how to install it.
QString installInstructions(const UpgradeDownload &download);

// "1.10.0" after "1.9.2": versions compared number by number.
bool isNewerVersion(const QString &offered, const QString &running);

} // namespace fenlark
