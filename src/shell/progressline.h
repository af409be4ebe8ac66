#pragma once

#include "shell/progress.h"

#include <cstdio>

namespace fenlark {

// fenlarkctl's watcher of long work: one line on the terminal, drawn over itself
// ("Backing up the database  45%"), ended when the work is done. It draws only
// when its stream is a terminal, so a pipe or a file gets the JSON and messages
// alone. It never asks the work to stop: an interrupted command is ended by the
// terminal, and the work's transaction rolls back.
class ProgressLine {
public:
    // Draws on stderr when stderr is a terminal.
    ProgressLine();
    // Draws on out when terminal is true (tests).
    ProgressLine(std::FILE *out, bool terminal);
    ~ProgressLine();
    ProgressLine(const ProgressLine &) = delete;
    ProgressLine &operator=(const ProgressLine &) = delete;

    Progress &progress() { return m_progress; }

    // The text of the line: what is being done and how far, in whole percent.
    static QString text(qint64 done, qint64 total, const QString &what);

private:
    void draw(qint64 done, qint64 total, const QString &what);

    std::FILE *m_out;
    bool m_terminal;
    int m_lastPercent = -1;
    int m_width = 0;
    Progress m_progress;
};

} // namespace fenlark
