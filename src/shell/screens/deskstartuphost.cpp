#include "shell/screens/deskstartuphost.h"

#include "bookings/doublebookings.h"
#include "bookings/screens/checkinout.h"
#include "bookings/screens/confirmbooking.h"
#include "bookings/screens/doublebook.h"
#include "bookings/screens/viewbooking.h"
#include "reports/screens/reportlauncher.h"

#include "shell/screens/aboutdialog.h"
#include "shell/screens/languagedialog.h"
#include "shell/screens/mainwindow.h"
#include "synch/screens/dlgemergencysynch.h"
#include "synch/screens/dlgsynch.h"
#include "synch/synchrun.h"

#include <QApplication>

namespace fenlark {

DeskStartupHost::DeskStartupHost()
{
    SecurityAudit::setPrompt(&m_reasonPrompt);
}

DeskStartupHost::~DeskStartupHost()
{
    SecurityAudit::setPrompt(nullptr);
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

MainWindow *DeskStartupHost::createMainWindow(std::unique_ptr<Session> session)
{
    auto *window = new MainWindow(std::move(session));
    window->setSeams(DeskSeams{
        &ViewBooking::initialise,
        &ConfirmBooking::initialise,
        [](MainWindow &w, bool manual) {
            return manual ? synchManually(w.session().db(), &w) : automaticSynch(w.session().db());
        },
        [](MainWindow &w) { return synchEntireDatabase(w.session().db(), &w); },
        &DoubleBook::check,
        &CheckInOut::initialise,
        [](MainWindow &w, int number) { ReportLauncher(w.session(), &w).run(number); },
    });
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->show();
    window->drawCalendar();
    if (m_doubleBookings && !DoubleBook::check(*window, true)) {
        window->endNicely();
        delete window;
        return nullptr;
    }
    return window;
}

} // namespace fenlark
