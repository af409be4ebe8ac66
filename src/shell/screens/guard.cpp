#include "shell/screens/guard.h"

#include "shell/database.h"
#include "shell/errorlog.h"
#include "shell/refusal.h"

#include <exception>

namespace fenlark {

namespace {

int failures = 0;
bool reporting = false;

void report(const QString &what, const QString &detail)
{
    ++failures;
    ErrorLog::write(QStringLiteral("Stopped by an error: ") + what
                    + (detail.isEmpty() ? QString() : QStringLiteral(" | ") + detail));
    // A failure while the message itself is up is only logged: one box at a time.
    if (reporting)
        return;
    reporting = true;
    messages::sink().show(Refusal(5033, QStringLiteral("That could not be done, and nothing of it was saved:\n%1"), 5034,
                                  QStringLiteral("Error"))
                              .arg(what)
                              .toMessage());
    reporting = false;
}

} // namespace

void runGuarded(const std::function<void()> &action)
{
    try {
        action();
    } catch (const DatabaseError &e) {
        report(e.explanation(), e.message() + QStringLiteral(" [") + e.sql() + QStringLiteral("]"));
    } catch (const std::exception &e) {
        report(QString::fromUtf8(e.what()), QString());
    } catch (...) {
        report(QStringLiteral("unknown failure"), QString());
    }
}

int guardedFailures()
{
    return failures;
}

} // namespace fenlark
