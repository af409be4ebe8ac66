#pragma once

#include "shell/startup.h"

#include <memory>

namespace fenlark {

class MainWindow;

// The desk's side of start-up: dialogs, splash and the main window.
class DeskStartupHost : public StartupHost {
public:
    void askLanguage() override;
    void showSplash() override;
    void closeSplash() override;
    bool logInProperty(Session &session) override;
    bool checkSetup(Session &session) override;
    bool enterPassword(Session &session) override;
    void initialise(Session &session) override;
    bool checkDoubleBookings(Session &session) override;
    void showMainWindow(Session &session) override;

    // Builds the main window around the session of a successful start.
    MainWindow *createMainWindow(std::unique_ptr<Session> session);
};

} // namespace fenlark
