#include "shell/progressline.h"

#include <QByteArray>

#include <algorithm>

#include <unistd.h>

namespace fenlark {

ProgressLine::ProgressLine() : ProgressLine(stderr, isatty(fileno(stderr)) == 1) {}

ProgressLine::ProgressLine(std::FILE *out, bool terminal)
    : m_out(out)
    , m_terminal(terminal)
    , m_progress([this](qint64 done, qint64 total, const QString &what) {
        draw(done, total, what);
        return true;
    })
{
}

ProgressLine::~ProgressLine()
{
    if (m_terminal && m_width > 0) {
        std::fputc('\n', m_out);
        std::fflush(m_out);
    }
}

QString ProgressLine::text(qint64 done, qint64 total, const QString &what)
{
    const int percent = total > 0 ? int(std::clamp<qint64>(done, 0, total) * 100 / total) : 0;
    return QStringLiteral("%1  %2%").arg(what).arg(percent, 3);
}

void ProgressLine::draw(qint64 done, qint64 total, const QString &what)
{
    if (!m_terminal)
        return;
    const int percent = total > 0 ? int(std::clamp<qint64>(done, 0, total) * 100 / total) : 0;
    // Work reports far more often than the percentage changes.
    if (percent == m_lastPercent)
        return;
    m_lastPercent = percent;
    const QByteArray line = text(done, total, what).toLocal8Bit();
    // Blanks wipe what a longer line before left behind.
    const int pad = std::max(0, m_width - int(line.size()));
    std::fprintf(m_out, "\r%s%*s", line.constData(), pad, "");
    std::fflush(m_out);
    m_width = int(line.size());
}

} // namespace fenlark
