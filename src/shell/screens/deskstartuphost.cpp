#include "shell/screens/deskstartuphost.h"

#include "shell/screens/mainwindow.h"

namespace fenlark {

// Seams: each of these is connected to its dialog or service when that lands.
void DeskStartupHost::askLanguage() {}
void DeskStartupHost::showSplash() {}
void DeskStartupHost::closeSplash() {}
bool DeskStartupHost::logInProperty(Session &) { return false; }
bool DeskStartupHost::checkSetup(Session &) { return false; }
bool DeskStartupHost::enterPassword(Session &) { return true; }
void DeskStartupHost::initialise(Session &) {}
bool DeskStartupHost::checkDoubleBookings(Session &) { return true; }
void DeskStartupHost::showMainWindow(Session &) {}

MainWindow *DeskStartupHost::createMainWindow(std::unique_ptr<Session> session)
{
    auto *window = new MainWindow(std::move(session));
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->show();
    return window;
}

} // namespace fenlark
