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
    // The program's copy of the property becomes the desk's database: a second
    // copy of the large one would cost the disk more than it holds.
    static QTemporaryDir home;
    static const bool moved = QFile::rename(bench::generatedProperty(), home.filePath("Veldmoor.db"));
    if (!moved) {
        state.SkipWithError("the property could not be moved into the desk's home folder");
        return;
    }
    Home::setPath(home.path());
    writeConfig("Language", "1033");
    for (auto _ : state) {
        state.PauseTiming();
        bench::clearBackups();
        state.ResumeTiming();
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
