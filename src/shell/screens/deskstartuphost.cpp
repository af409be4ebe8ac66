#include "shell/screens/deskstartuphost.h"

#include "bookings/screens/confirmbooking.h"
#include "bookings/screens/viewbooking.h"

#include "shell/screens/aboutdialog.h"
#include "shell/screens/languagedialog.h"
#include "shell/screens/mainwindow.h"

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

bool DeskStartupHost::checkSetup(Session &)
{
    return false;
}

bool DeskStartupHost::enterPassword(Session &session)
{
    return fenlark::enterPassword(session);
}

void DeskStartupHost::initialise(Session &session)
{
    session.reloadSetup();
}

bool DeskStartupHost::checkDoubleBookings(Session &)
{
    return true;
}

void DeskStartupHost::showMainWindow(Session &) {}

MainWindow *DeskStartupHost::createMainWindow(std::unique_ptr<Session> session)
{
    auto *window = new MainWindow(std::move(session));
    window->setSeams(DeskSeams{&ViewBooking::initialise, &ConfirmBooking::initialise, {}});
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->show();
    window->drawCalendar();
    return window;
}

} // namespace fenlark
