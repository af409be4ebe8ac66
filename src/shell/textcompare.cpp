#include "shell/textcompare.h"

#include "shell/strings.h"

#include <QSqlDatabase>
#include <QSqlDriver>
#include <QVariant>

#include <sqlite3.h>

namespace fenlark {

namespace {

// foldcase(text): NULL stays NULL; anything else is read as text and folded.
void foldCaseFunction(sqlite3_context *context, int argc, sqlite3_value **argv)
{
    if (argc != 1 || sqlite3_value_type(argv[0]) == SQLITE_NULL) {
        sqlite3_result_null(context);
        return;
    }
    const auto *text = static_cast<const QChar *>(sqlite3_value_text16(argv[0]));
    const int bytes = sqlite3_value_bytes16(argv[0]);
    // A zero-length blob has no text to point at; any other value without one
    // is a conversion that ran out of memory.
    if (!text && sqlite3_value_type(argv[0]) != SQLITE_BLOB) {
        sqlite3_result_error_nomem(context);
        return;
    }
    const QString folded = text ? foldCase(QString(text, bytes / 2)) : QString();
    sqlite3_result_text16(context, folded.utf16(), static_cast<int>(folded.size() * 2), SQLITE_TRANSIENT);
}

} // namespace

QString foldCase(const QString &text)
{
    return text.normalized(QString::NormalizationForm_C).toCaseFolded();
}

bool registerFoldCase(const QSqlDatabase &db)
{
    if (!db.isOpen() || !db.driver())
        return false;
    const QVariant handle = db.driver()->handle();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0)
        return false;
    sqlite3 *connection = *static_cast<sqlite3 *const *>(handle.constData());
    if (!connection)
        return false;
    // Deterministic, so SQLite may use it in triggers and indexes; innocuous, as it
    // reads nothing but its argument.
    return sqlite3_create_function_v2(connection, "foldcase", 1, SQLITE_UTF16 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS,
                                      nullptr, foldCaseFunction, nullptr, nullptr, nullptr)
        == SQLITE_OK;
}

NameOrder::NameOrder()
    : m_collator(StringTable::instance().locale())
{
    m_collator.setNumericMode(true);
}

bool NameOrder::operator()(const QString &a, const QString &b) const
{
    return m_collator.compare(a, b) < 0;
}

} // namespace fenlark
