#include "shell/startup.h"

#include "shell/backup.h"
#include "shell/config.h"
#include "shell/databasefiles.h"
#include "shell/errorlog.h"
#include "shell/home.h"
#include "shell/inifile.h"
#include "shell/messages.h"
#include "shell/restore.h"
#include "shell/strings.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>

namespace fenlark {

Startup::Startup(StartupHost &host)
    : m_host(host)
{
}

int Startup::startingDatabaseNumber()
{
    return hasMultipleDatabases() ? 1 : 0;
}

std::unique_ptr<Database> Startup::openConnection(const QString &path, int dbNumber)
{
    try {
        return Database::open(path);
    } catch (const DatabaseOpenError &e) {
        ErrorLog::write(path + QStringLiteral(": ") + e.reason());
        const Refusal cannotOpen = Refusal(5020, QStringLiteral("Could not open database (%1)"), 5021,
                                           QStringLiteral("Could not open database."))
                                       .arg(path)
                                       .thenText(QStringLiteral("\n\n") + e.explanation());
        const QString backup = e.backupMayHelp() && dbNumber >= 0 ? newestBackup(dbNumber) : QString();
        if (backup.isEmpty()) {
            messages::showMessage(cannotOpen.toMessage());
            return nullptr;
        }
        if (!offerBackup(cannotOpen, backup))
            return nullptr;
        const Result<QString> restored = restoreDatabase(path, backup);
        if (!restored) {
            messages::showMessage(restored.refusal().toMessage());
            return nullptr;
        }
        return openConnection(path, -1);
    }
}

bool Startup::offerBackup(const Refusal &cannotOpen, const QString &backup)
{
    const QString made = QLocale().toString(QFileInfo(backup).lastModified(), QLocale::ShortFormat);
    UserMessage question = cannotOpen.toMessage();
    question.kind = UserMessage::Question;
    question.id = 5052;
    question.text += QStringLiteral("\n\n")
                     + fillArguments(getString(5052, QStringLiteral("Restore the newest backup (%1, made %2)? The damaged file "
                                                                      "is kept beside it under another name.")),
                                     {QDir::toNativeSeparators(backup), made});
    return messages::sink().ask(question);
}

Startup::Outcome Startup::run()
{
    // 1. One desk per home folder.
    m_instanceLock = std::make_unique<QLockFile>(Home::file(QStringLiteral("fenlark.lock")));
    m_instanceLock->setStaleLockTime(0);
    if (!m_instanceLock->tryLock(0)) {
        // A folder that cannot be written is no second desk: say what it is.
        if (m_instanceLock->error() != QLockFile::LockFailedError) {
            messages::critical(5056,
                               QStringLiteral("Fenlark cannot write in its folder %1. Check that the folder exists and that "
                                              "you may write in it."),
                               5057, QStringLiteral("Folder not writable"), {QDir::toNativeSeparators(Home::path())});
            return HomeNotWritable;
        }
        messages::critical(2219, QStringLiteral("The veldmoor program is already running. Use that one instead."), 2220, QStringLiteral("veldmoor application already open"));
        return AlreadyRunning;
    }

    // A line of vmconfig.ini that is no setting is passed over; the log says which.
    for (const QString &line : IniFile(configPath()).damagedLines())
        ErrorLog::write(QStringLiteral("vmconfig.ini, skipped ") + line);

    // 2. Language: ask on "0", otherwise set it without a dialog.
    const QString language = readConfig(QStringLiteral("Language"), QStringLiteral("0"));
    if (language == QLatin1String("0"))
        m_host.askLanguage();
    else
        StringTable::instance().setLanguage(language.toInt());

    // 3. Splash.
    m_host.showSplash();

    // 5-7. Database number, open, backup.
    const int dbNumber = startingDatabaseNumber();
    auto db = openConnection(getDBPath(dbNumber), dbNumber);
    if (!db) {
        m_host.closeSplash();
        return CannotOpenDatabase;
    }
    // SQLite cannot make its locks safe on a network file system: say so once.
    if (!db->networkFileSystem().isEmpty()) {
        messages::warning(5054,
                          QStringLiteral("%1 lies on a network drive (%2). SQLite cannot keep a database safe there when two "
                                         "desks use it: open it from one desk at a time, or move it to this computer."),
                          5055, QStringLiteral("Database on a network drive"), {db->path(), db->networkFileSystem()});
    }
    m_session = std::make_unique<Session>(std::move(db), dbNumber);
    m_session->setMultipleDatabases(dbNumber > 0);
    Progress backup = m_host.backupProgress();
    Backup::backupDatabase(m_session->db(), dbNumber, backup);

    // 8. A database without a property is bound to one first.
    if (m_session->BBID() < 10000) {
        m_host.closeSplash();
        if (!m_host.logInProperty(*m_session))
            return LoginCancelled;
        m_session->refreshBBSetup();
    }

    // 9. The setup check; a failure is fatal only to a database without rooms.
    if (!m_host.checkSetup(*m_session)) {
        if (m_host.propertyLogInRefused()) {
            m_host.closeSplash();
            return LoginCancelled;
        }
        if (m_session->db().scalar(QStringLiteral("select count(*) from room")).toInt() == 0) {
            m_host.closeSplash();
            messages::critical(5022, QStringLiteral("Cannot find any rooms under this BBID."), 5023, QStringLiteral("No rooms set up."));
            return NoRooms;
        }
    }
    m_session->refreshBBSetup();

    // 10-11. The user.
    m_host.closeSplash();
    if (!m_host.enterPassword(*m_session))
        return UserCancelled;

    // 12. Load and draw; then the check for double bookings.
    m_host.initialise(*m_session);
    if (!m_host.checkDoubleBookings(*m_session))
        return StoppedAtDoubleBookings;

    // 13.
    m_host.showMainWindow(*m_session);
    return Running;
}

} // namespace fenlark
