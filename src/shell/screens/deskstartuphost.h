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
    // Seam for the setup download: until it is connected the check reports a
    // failure, so start-up goes on whenever the database holds rooms.
    bool checkSetup(Session &session) override;
    bool propertyLogInRefused() const override { return m_loginRefused; }
    bool enterPassword(Session &session) override;
    void initialise(Session &session) override;
    // Seam for the check for double bookings: until it is connected start-up goes on.
    bool checkDoubleBookings(Session &session) override;
    void showMainWindow(Session &session) override;

    // Builds the main window around the session of a successful start and draws
    // the calendar from a week before today.
    MainWindow *createMainWindow(std::unique_ptr<Session> session);

private:
    std::unique_ptr<AboutDialog> m_splash;
    InputReasonPrompt m_reasonPrompt;
    bool m_loginRefused = false;
};

} // namespace fenlark
