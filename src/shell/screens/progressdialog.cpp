#include "shell/screens/progressdialog.h"

#include "shell/strings.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QProgressDialog>

#include <memory>

namespace fenlark {

namespace {

// The dialog's scale: fine enough for a smooth bar, far from int's limits.
constexpr int Scale = 1000;

// The dialog is a child of its parent window, which may close before the work
// ends (start-up's backup runs under the splash): then the parent has deleted it
// and the work goes on unwatched.
struct Watched {
    QPointer<QProgressDialog> dialog;
    QElapsedTimer sinceUpdate;

    Watched() = default;
    Watched(const Watched &) = delete;
    Watched &operator=(const Watched &) = delete;
    ~Watched() { delete dialog.data(); }
};

} // namespace

Progress progressDialog(const QString &title, QWidget *parent)
{
    auto watched = std::make_shared<Watched>();
    watched->dialog = new QProgressDialog(QString(), getString(6031, QStringLiteral("Cancel")), 0, Scale, parent);
    QProgressDialog &dialog = *watched->dialog;
    dialog.setObjectName(QStringLiteral("dlgProgress"));
    dialog.setWindowTitle(title);
    dialog.setWindowModality(Qt::WindowModal);
    dialog.setMinimumDuration(ProgressDialogDelayMs);
    dialog.setAutoClose(true);
    dialog.setValue(0);   // the clock for the delay starts here
    return Progress([watched](qint64 done, qint64 total, const QString &what) {
        if (!watched->dialog)
            return true;
        QProgressDialog &d = *watched->dialog;
        // Work reports far more often than a person can see; the bar follows at
        // most twenty times a second, and always at the end.
        const bool last = total > 0 && done >= total;
        if (!last && watched->sinceUpdate.isValid() && watched->sinceUpdate.elapsed() < 50)
            return !d.wasCanceled();
        watched->sinceUpdate.start();
        if (!what.isEmpty() && what != d.labelText())
            d.setLabelText(what);
        const int value = total > 0 ? int(std::clamp<qint64>(done, 0, total) * Scale / total) : 0;
        // setValue shows the dialog once the delay has passed and lets it answer
        // the Cancel button.
        d.setValue(std::min(value, Scale - 1));
        return !d.wasCanceled();
    });
}

} // namespace fenlark
