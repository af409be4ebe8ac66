#pragma once

#include "shell/progress.h"

#include <QString>

class QWidget;

namespace fenlark {

// The desk's watcher of long work: a progress dialog with Cancel that comes up
// only once the work has taken half a second, so quick work shows nothing. The
// dialog lives as long as the Progress handed back; Cancel makes the work's next
// step answer false.
Progress progressDialog(const QString &title, QWidget *parent);

// How long work runs before its dialog appears.
constexpr int ProgressDialogDelayMs = 500;

} // namespace fenlark
