#pragma once

#include "shell/screens/logindialogs.h"
#include "shell/startup.h"

#include <memory>

namespace fenlark {

class AboutDialog;
class MainWindow;

// The desk's side of start-up: dialogs, splash and the main window.
class DeskStartupHost : public StartupHost {
public:
    DeskStartupHost();
    ~DeskStartupHost() override;

    void askLanguage() override;
    void showSplash() override;
    void closeSplash() override;
    bool logInProperty(Session &session) override;
    // The setup download, with the log-on dialog again when the server refuses.
    bool checkSetup(Session &session) override;
    bool propertyLogInRefused() const override { return m_loginRefused; }
    bool enterPassword(Session &session) override;
    void initialise(Session &session) override;
    // Scans for rooms sold twice. The list that repairs them opens bookings in
    // the editor, which needs the main window, so createMainWindow shows it.
    bool checkDoubleBookings(Session &session) override;
    void showMainWindow(Session &session) override;
    // A progress dialog with Cancel when the backup takes a while.
    Progress backupProgress() override;

    // Builds the main window around the session of a successful start and draws
    // the calendar from a week before today; then the list of double bookings,
    // when there are any. Null when the user left the program from that list.
    MainWindow *createMainWindow(std::unique_ptr<Session> session);

private:
    std::unique_ptr<AboutDialog> m_splash;
    InputReasonPrompt m_reasonPrompt;
    bool m_loginRefused = false;
    bool m_doubleBookings = false;
};

} // namespace fenlark
