// Start-up to the shown main window on the generated property:
// open, backup, property, setup, calendar drawn, window painted. No server contact.
#include "generatedproperty.h"
#include "shell/config.h"
#include "shell/database.h"
#include "shell/home.h"
#include "desk/screens/deskstartuphost.h"
#include "desk/screens/mainwindow.h"
#include "shell/startup.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

using namespace fenlark;

namespace {

// The desk's start-up without the two questions a person answers.
class UnattendedHost : public DeskStartupHost {
public:
    void askLanguage() override {}
    bool enterPassword(Session &) override { return true; }
};

void BM_StartupToShownMainWindow(benchmark::State &state)
{
    QTemporaryDir home;
    QFile::copy(bench::generatedProperty(), home.filePath("Veldmoor.db"));
    Home::setPath(home.path());
    writeConfig("Language", "1033");
    for (auto _ : state) {
        UnattendedHost host;
        Startup startup(host);
        if (startup.run() != Startup::Running) {
            state.SkipWithError("start-up failed");
            break;
        }
        MainWindow *window = host.createMainWindow(startup.takeSession());
        QApplication::processEvents();
        state.PauseTiming();
        window->setAttribute(Qt::WA_DeleteOnClose, false);
        delete window;
        state.ResumeTiming();
    }
}
BENCHMARK(BM_StartupToShownMainWindow)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
