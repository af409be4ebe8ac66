#pragma once

#include <QString>

#include <functional>

namespace fenlark {

// How a long piece of work tells whoever watches how far it has come, and learns
// whether they want it stopped. The desk watches with a progress dialog that has
// Cancel, fenlarkctl with a line on a terminal, tests with a function; work that
// nobody watches gets a Progress without one, which never asks to stop.
class Progress {
public:
    // done of total, and what is being done now; false asks the work to stop.
    using Watcher = std::function<bool(qint64 done, qint64 total, const QString &what)>;

    Progress() = default;
    explicit Progress(Watcher watcher) : m_watcher(std::move(watcher)) {}

    // Tells the watcher; true while the work should go on. Once the watcher has
    // asked to stop, every later step answers false without asking again.
    bool step(qint64 done, qint64 total, const QString &what = {});
    bool stopped() const { return m_stopped; }

private:
    Watcher m_watcher;
    bool m_stopped = false;
};

} // namespace fenlark
