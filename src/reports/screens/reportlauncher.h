#pragma once

#include "reports/reportcatalogue.h"

#include <QString>

#include <functional>
#include <optional>

class QWidget;

namespace fenlark {

class Session;

// A report run from the desk: the permission to run reports, the report's
// criteria dialog, then the workbook saved in the reports folder and opened with
// the desktop's spreadsheet program. Where the workbook cannot be saved or
// opened, the report goes to the clipboard as tab-separated text instead.
class ReportLauncher {
public:
    ReportLauncher(Session &session, QWidget *parent);

    // Runs report number (1 to 12) from its menu entry.
    void run(int number);
    // What follows a confirmed criteria dialog.
    void runWith(int number, const ReportCriteria &criteria);

    // The folder reports are saved in: <home>/reports.
    static QString folder();

    // The criteria dialog of the report; nothing when it was cancelled. Tests
    // answer in its place.
    std::function<std::optional<ReportCriteria>(QWidget *parent, int number, const ReportCriteria &defaults)> askCriteria;
    // Opens a saved workbook; false when nothing could open it.
    std::function<bool(const QString &path)> openFile;

private:
    void toClipboard(const ReportSheet &sheet);

    Session &m_session;
    QWidget *m_parent;
};

} // namespace fenlark
