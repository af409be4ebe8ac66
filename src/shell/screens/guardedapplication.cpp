#include "shell/screens/guardedapplication.h"

#include "shell/screens/guard.h"

namespace fenlark {

GuardedApplication::GuardedApplication(int &argc, char **argv) : QApplication(argc, argv) {}

bool GuardedApplication::notify(QObject *receiver, QEvent *event)
{
    bool handled = false;
    runGuarded([&] { handled = QApplication::notify(receiver, event); });
    return handled;
}

} // namespace fenlark
