#include "shell/progress.h"

namespace fenlark {

bool Progress::step(qint64 done, qint64 total, const QString &what)
{
    if (!m_stopped && m_watcher && !m_watcher(done, total, what))
        m_stopped = true;
    return !m_stopped;
}

} // namespace fenlark
