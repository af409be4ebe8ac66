#include "desk/screens/deskstartuphost.h"

#include "bookings/doublebookings.h"
#include "bookings/screens/checkinout.h"
#include "bookings/screens/confirmbooking.h"
#include "bookings/screens/doublebook.h"
#include "bookings/screens/viewbooking.h"
#include "reports/screens/reportlauncher.h"

#include "shell/screens/aboutdialog.h"
#include "shell/screens/languagedialog.h"
#include "desk/screens/mainwindow.h"
#include "synch/screens/dlgemergencysynch.h"
#include "synch/screens/dlgsynch.h"
#include "synch/screens/dlgupgrade.h"
#include "synch/synchrun.h"

#include <QApplication>
#include <QUrl>

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

DeskSeams standardSeams()
{
    DeskSeams seams;
    seams.viewBooking = [](MainWindow &w, qint32 booking, qint32 room) {
        ViewBooking::initialise(w.session(), w.rates(), booking, room, &w);
    };
    seams.confirmBooking = [](MainWindow &w, const std::vector<qint32> &rooms, QDate arrival, int nights) {
        ConfirmBooking dialog(w.session(), w.rates(), rooms, arrival, nights, &w);
        if (dialog.exec() != QDialog::Accepted)
            return qint32(0);
        ViewBooking::initialise(w.session(), w.rates(), dialog.saved().BBBookingID, dialog.saved().firstRoomId, &w);
        return dialog.saved().BBBookingID;
    };
    seams.synchronise = [](MainWindow &w, bool manual) {
        return manual ? synchManually(w.session().db(), &w) : automaticSynch(w.session().db());
    };
    seams.emergencySynch = [](MainWindow &w) { return synchEntireDatabase(w.session().db(), &w); };
    seams.doubleBookings = [](MainWindow &w, bool onStart) {
        return DoubleBook::check(w.session(), w.bookingOpener(), onStart, &w);
    };
    seams.checkInOut = [](MainWindow &w, int mode) {
        CheckInOut::initialise(w.session(), mode == 1 ? StayEnd::Arrivals : StayEnd::Departures, w.bookingOpener(), &w);
    };
    seams.runReport = [](MainWindow &w, int number) {
        ReportLauncher launcher(w.session(), &w);
        launcher.openFile = [&w](const QString &path) { return w.openUrl(QUrl::fromLocalFile(path)); };
        launcher.run(number);
    };
    seams.upgrade = [](MainWindow &w) {
        DlgUpgrade dialog(&w);
        dialog.exec();
    };
    return seams;
}

MainWindow *DeskStartupHost::createMainWindow(std::unique_ptr<Session> session)
{
    auto *window = new MainWindow(std::move(session));
    window->setSeams(standardSeams());
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
