#include "synch/upgrade.h"

#include "shell/backup.h"
#include "shell/config.h"
#include "shell/database.h"
#include "shell/databasefiles.h"
#include "shell/home.h"
#include "shell/strings.h"
#include "synch/httpfetch.h"
#include "synch/synch.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QStringDecoder>
#include <QVersionNumber>

namespace fenlark {

namespace {

// The configured databases: Database1.. when several are listed, else the single one.
QList<int> configuredDatabases()
{
    QList<int> numbers;
    if (!hasMultipleDatabases())
        return {0};
    for (int n = 1; n <= databaseCount(); ++n)
        numbers << n;
    return numbers;
}

// Text as a person can read it: valid UTF-8 without control characters other
// than line ends and tabs. A cut in the middle of a character is not an error.
bool readableText(const QByteArray &bytes, QString &text)
{
    QStringDecoder decoder(QStringDecoder::Utf8);
    text = decoder.decode(bytes);
    if (decoder.hasError())
        return false;
    for (const QChar ch : text) {
        if (ch.category() == QChar::Other_Control && ch != QLatin1Char('\n') && ch != QLatin1Char('\r') && ch != QLatin1Char('\t'))
            return false;
    }
    return true;
}

Refusal upgradeFailure()
{
    return Refusal(7302, QStringLiteral("Upgrade failure. "), 7305, QStringLiteral("Upgrade Failure"))
        .thenText(QStringLiteral("\n\n"))
        .then(7303, QStringLiteral("Reason: "));
}

Refusal &callSupport(Refusal &refusal)
{
    return refusal.thenText(QStringLiteral("\n")).then(7304, QStringLiteral("Please call veldmoor support on 021 555 0100"));
}

Refusal downloadFailed()
{
    return Refusal(7317, QStringLiteral("Failed: No upgrade files were found."), 7316,
                   QStringLiteral("Failed: Upgrade did not download correctly."));
}

} // namespace

SoftwareUpgrade::SoftwareUpgrade(HttpFetch &fetch, ServerLogin login) : m_fetch(fetch), m_login(std::move(login)) {}

void SoftwareUpgrade::progress(const QString &text)
{
    if (m_progress)
        m_progress(text);
}

Refusal SoftwareUpgrade::connectionFailure(int endingId, const QString &ending)
{
    return Refusal(2012, QStringLiteral("Could not access the veldmoor server. You can test you have an Internet connection "), 2015,
                   QStringLiteral("Connection not established"))
        .then(2013, QStringLiteral("by opening www.veldmoor.example using your normal web browser. If this works, "))
        .then(endingId, ending);
}

QString SoftwareUpgrade::offerUrl(const QString &server)
{
    return serverBase(server) + QStringLiteral("/download/fenlark.json");
}

QString SoftwareUpgrade::upgradeFolder()
{
    return Home::file(QStringLiteral("upgrade"));
}

Outcome SoftwareUpgrade::check()
{
    const FetchResult answer = m_fetch.postEmpty(upgradeUrl(m_login), ReplyChunk);
    m_reply.clear();
    if (answer.body.isEmpty()) {
        progress(getString(7300, QStringLiteral("Connection Timeout...")));
        return connectionFailure(7301, QStringLiteral("try to run the upgrade program again."));
    }
    QString text;
    if (!readableText(answer.body, text)) {
        Refusal refusal = upgradeFailure().then(7333, QStringLiteral("The server's reply is not text."));
        return callSupport(refusal);
    }
    m_reply = text;
    if (text == QLatin1String("OK"))
        return Done{};
    Refusal refusal = upgradeFailure().thenText(text);
    return callSupport(refusal);
}

Result<UpgradeOffer> SoftwareUpgrade::fetchOffer()
{
    const FetchResult answer = m_fetch.get(offerUrl(m_login.server), OfferLimit);
    if (answer.body.isEmpty())
        return connectionFailure(7314, QStringLiteral("try pressing Upgrade again."));
    if (answer.cut)
        return Refusal(7328, QStringLiteral("The server's description of the upgrade could not be read."), 7305,
                       QStringLiteral("Upgrade Failure"));
    return parseOffer(answer.body, m_login.server);
}

Result<UpgradeDownload> SoftwareUpgrade::upgradeSoftware(const UpgradeOffer &offer)
{
    const QString folder = upgradeFolder();
    QDir dir(folder);
    if (dir.exists() && !dir.removeRecursively())
        return Refusal(7309, QStringLiteral("Error: Could not remove directory "), 7310, QStringLiteral("Failure to remove upgrade directory"))
            .thenText(QDir::toNativeSeparators(folder));
    if (!QDir().mkpath(folder))
        return Refusal(7311, QStringLiteral("Error: Could not create directory "), 7312, QStringLiteral("Failure to create upgrade directory"))
            .thenText(QDir::toNativeSeparators(folder));

    UpgradeDownload download;
    download.offer = offer;
    progress(getString(7318, QStringLiteral("Backing up databases...")));
    download.backedUp = backupAllDatabases();

    progress(getString(7313, QStringLiteral("Downloading new software...")));
    const FetchResult answer = m_fetch.get(offer.downloadUrl, PackageLimit);
    if (answer.body.isEmpty())
        return connectionFailure(7314, QStringLiteral("try pressing Upgrade again."));
    // A Debian package is an "ar" archive; anything else (an error page, a cut
    // download) is not installed by anyone.
    if (answer.cut || !answer.body.startsWith("!<arch>\n")) {
        progress(getString(7315, QStringLiteral("Upgrade files not found...")));
        return downloadFailed();
    }
    download.packagePath = dir.filePath(offer.package);
    QFile file(download.packagePath);
    if (!file.open(QIODevice::WriteOnly) || file.write(answer.body) != answer.body.size() || !file.flush()) {
        file.close();
        file.remove();
        progress(getString(7315, QStringLiteral("Upgrade files not found...")));
        return downloadFailed();
    }
    return download;
}

ServerLogin firstDatabaseLogin()
{
    const QString path = getDBPath(configuredDatabases().constFirst());
    if (!QFileInfo::exists(path)) {
        ServerLogin login;
        login.server = config::server();
        return login;
    }
    auto db = Database::open(path);
    return loginFromSetup(*db);
}

QStringList backupAllDatabases()
{
    QStringList done;
    for (const int n : configuredDatabases()) {
        const QString path = getDBPath(n);
        if (path.isEmpty() || !QFileInfo::exists(path))
            continue;
        auto db = Database::open(path);
        if (Backup::backupDatabase(*db, n))
            done << path;
    }
    return done;
}

Result<UpgradeOffer> parseOffer(const QByteArray &json, const QString &server)
{
    static const QRegularExpression plainName(QStringLiteral("^[A-Za-z0-9][A-Za-z0-9._+~-]*$"));
    const Refusal unreadable(7328, QStringLiteral("The server's description of the upgrade could not be read."), 7305,
                             QStringLiteral("Upgrade Failure"));
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return unreadable;
    const QJsonObject object = document.object();
    UpgradeOffer offer;
    offer.version = object.value(QStringLiteral("version")).toString().trimmed();
    offer.package = object.value(QStringLiteral("package")).toString().trimmed();
    offer.notes = object.value(QStringLiteral("notes")).toString().trimmed();
    if (QVersionNumber::fromString(offer.version).isNull() || !plainName.match(offer.package).hasMatch())
        return unreadable;
    offer.downloadUrl = serverBase(server) + QStringLiteral("/download/") + offer.package;
    offer.newer = isNewerVersion(offer.version, QStringLiteral(FENLARK_VERSION));
    return offer;
}

QString installInstructions(const UpgradeDownload &download)
{
    QStringList lines;
    lines << fillArguments(getString(7320, QStringLiteral("Fenlark %1 is ready to install.")), {download.offer.version}) << QString();
    if (!download.offer.notes.isEmpty())
        lines << getString(7324, QStringLiteral("Release notes:")) << download.offer.notes << QString();
    lines << fillArguments(getString(7323, QStringLiteral("Downloaded from: %1")), {download.offer.downloadUrl});
    lines << fillArguments(getString(7321, QStringLiteral("Saved as: %1")), {QDir::toNativeSeparators(download.packagePath)});
    lines << fillArguments(getString(7325, QStringLiteral("Databases backed up first: %1")), {QString::number(download.backedUp.size())});
    lines << QString() << getString(7322, QStringLiteral("Install it with the system's package manager, for example:"));
    // A path with blanks is quoted for the shell the command is pasted into.
    const QString path = download.packagePath.contains(QLatin1Char(' ')) ? QLatin1Char('\'') + download.packagePath + QLatin1Char('\'')
                                                                           : download.packagePath;
    lines << QStringLiteral("    sudo apt install ") + path;
    lines << getString(7329, QStringLiteral("and then start Fenlark again."));
    return lines.join(QLatin1Char('\n'));
}

bool isNewerVersion(const QString &offered, const QString &running)
{
    return QVersionNumber::compare(QVersionNumber::fromString(offered), QVersionNumber::fromString(running)) > 0;
}

} // namespace fenlark
