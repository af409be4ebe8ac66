#include "shell/databasefiles.h"
#include "desk/demo.h"
#include "shell/errorlog.h"
#include "shell/home.h"
#include "desk/screens/deskstartuphost.h"
#include "shell/screens/dialogmessagesink.h"
#include "shell/screens/guardedapplication.h"
#include "shell/screens/layoutkeeper.h"
#include "shell/startup.h"
#include "synch/demoserver.h"


using namespace fenlark;

int main(int argc, char *argv[])
{
    GuardedApplication app(argc, argv);
    QStringList args = app.arguments().mid(1);
    const QString home = Home::takeHomeArgument(args);
    const bool demo = args.contains(QStringLiteral("--demo"));
    Home::setPath(demo ? Demo::homeFolder(home) : Home::resolve(home));

    DialogMessageSink sink;
    messages::setSink(&sink);
    if (demo && Demo::prepare()) {
        // The demo's own server on this machine, so synchronisation works offline.
        QString error;
        if (startDemoServer(getDBPath(0), &app, &error).isEmpty())
            ErrorLog::write(QStringLiteral("The demo server did not start: ") + error);
    }

    // Windows and lists come back as this user left them.
    LayoutKeeper layout;
    DeskStartupHost host;
    Startup startup(host);
    if (startup.run() != Startup::Running)
        return 0;
    if (!host.createMainWindow(startup.takeSession()))
        return 0;
    return app.exec();
}
