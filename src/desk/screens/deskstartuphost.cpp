#include "desk/screens/deskstartuphost.h"

#include "accounts/screens/accountform.h"
#include "bookings/doublebookings.h"
#include "bookings/screens/bookingsearchdialog.h"
#include "bookings/screens/cancellations.h"
#include "bookings/screens/checkinout.h"
#include "bookings/screens/confirmbooking.h"
#include "bookings/screens/doublebook.h"
#include "bookings/screens/occupancydialog.h"
#include "bookings/screens/quickquotedialog.h"
#include "bookings/screens/roomswap.h"
#include "bookings/screens/viewbooking.h"
#include "clients/screens/clientdelete.h"
#include "clients/screens/clienthistorydialog.h"
#include "clients/screens/clientsearchdialogs.h"
#include "clients/screens/sourcecodemt.h"
#include "clients/screens/viewclient.h"
#include "reports/screens/reportlauncher.h"

#include "shell/screens/aboutdialog.h"
#include "shell/screens/languagedialog.h"
#include "desk/screens/mainwindow.h"
#include "reports/screens/accountdocuments.h"
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
    seams.clientMaintenance = [](MainWindow &w) {
        ViewClientOpener editor(w.session());
        ClientMaintenance dialog(w.session().db(), editor, &w);
        dialog.exec();
    };
    seams.clientHistory = [](MainWindow &w) {
        ClientHistory dialog(w.session(), w.bookingOpener(), &w);
        dialog.exec();
    };
    seams.clientRetire = [](MainWindow &w) {
        ClientDelete dialog(w.session(), &w);
        dialog.exec();
    };
    seams.replaceSource = [](MainWindow &w) {
        SourceCodeMT dialog(w.session(), &w);
        dialog.exec();
    };
    seams.runReport = [](MainWindow &w, int number) {
        ReportLauncher launcher(w.session(), &w);
        launcher.openFile = [&w](const QString &path) { return w.openUrl(QUrl::fromLocalFile(path)); };
        launcher.run(number);
    };
    seams.swapRoom = [](MainWindow &w) {
        RoomSwapDialog dialog(w.session(), &w);
        dialog.exec();
    };
    seams.search = [](MainWindow &w) {
        BookingSearchDialog dialog(w.session(), w.bookingOpener(), [&w](QDate from) { w.setFromDate(from); }, &w);
        dialog.exec();
    };
    seams.quickQuote = [](MainWindow &w, QDate arrival, int nights) {
        QuickQuoteDialog dialog(w.session(), w.rates(), arrival, nights, &w);
        dialog.exec();
    };
    seams.occupancy = [](MainWindow &w) {
        OccupancyDialog dialog(w.session(), w.rates(), &w);
        dialog.exec();
    };
    seams.cancellations = [](MainWindow &w) {
        {
            Cancellations dialog(w.session(), w.rates(), &w);
            dialog.fill();
            dialog.exec();
        }
        // A restore may have put a guest in a room sold meanwhile.
        return w.checkDoubleBookings(true);
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
