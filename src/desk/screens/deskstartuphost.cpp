#include "desk/screens/deskstartuphost.h"

#include "accounts/screens/accountform.h"
#include "bookings/doublebookings.h"

#include "shell/screens/aboutdialog.h"
#include "shell/screens/languagedialog.h"
#include "shell/screens/progressdialog.h"
#include "shell/strings.h"
#include "desk/screens/mainwindow.h"
#include "reports/screens/accountdocuments.h"
#include "synch/synchrun.h"

#include <QApplication>

namespace fenlark {

DeskStartupHost::DeskStartupHost()
{
    SecurityAudit::setPrompt(&m_reasonPrompt);
    AccountDeskHooks documents;
    documents.printDocument = [](Session &session, QWidget *, const QString &type, qint32 accountId) {
        printAccountDocument(session, type, accountId, true, false);
    };
    documents.openDocument = [](Session &session, QWidget *, const QString &type, qint32 accountId) {
        printAccountDocument(session, type, accountId, false, false);
    };
    AccountDeskHooks::install(std::move(documents));
}

DeskStartupHost::~DeskStartupHost()
{
    SecurityAudit::setPrompt(nullptr);
    AccountDeskHooks::install({});
}

void DeskStartupHost::askLanguage()
{
    LanguageDialog::showDialog();
}

void DeskStartupHost::showSplash()
{
    m_splash = std::make_unique<AboutDialog>(false);
    m_splash->show();
    QApplication::processEvents();
}

void DeskStartupHost::closeSplash()
{
    m_splash.reset();
}

bool DeskStartupHost::logInProperty(Session &session)
{
    return LoginDialog::login(session.db(), session.dbNumber());
}

bool DeskStartupHost::checkSetup(Session &session)
{
    // A refused log-on during the download lets the user type the property's
    // BBID and password again, and the download is retried with them.
    const SetupCheck check = checkSetupAtStartup(session.db(), [&session](qint32 &bbid, QString &password) {
        if (!LoginDialog::login(session.db(), session.dbNumber()))
            return false;
        session.refreshBBSetup();
        bbid = session.BBID();
        password = session.BBPwd();
        return true;
    });
    m_loginRefused = check.loginRefused;
    return check.ok;
}

bool DeskStartupHost::enterPassword(Session &session)
{
    return fenlark::enterPassword(session);
}

void DeskStartupHost::initialise(Session &session)
{
    session.reloadSetup();
}

bool DeskStartupHost::checkDoubleBookings(Session &session)
{
    m_doubleBookings = DoubleBookingScan(session.db()).scan();
    return true;
}

void DeskStartupHost::showMainWindow(Session &) {}

Progress DeskStartupHost::backupProgress()
{
    return progressDialog(getString(5305, QStringLiteral("Backing up the database")), QApplication::activeWindow());
}

MainWindow *DeskStartupHost::createMainWindow(std::unique_ptr<Session> session)
{
    auto *window = new MainWindow(std::move(session));
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->show();
    window->drawCalendar();
    if (m_doubleBookings && !window->checkDoubleBookings(true)) {
        window->endNicely();
        delete window;
        return nullptr;
    }
    return window;
}

} // namespace fenlark
