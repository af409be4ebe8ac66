// The server exchange's JSON reader on any text: it must end, and what it reads
// (however damaged the text) must write out as JSON that reads back the same.

#include "fuzzsupport.h"
#include "synch/json.h"

#include <cstdlib>

using namespace fenlark;

namespace {

bool plainKeys(const JsonValue &value)
{
    if (const JsonObject *object = value.object()) {
        for (const auto &[key, item] : object->entries()) {
            for (QChar c : key)
                if (c.unicode() < 32 || c.unicode() > 126 || c == u'"' || c == u'\\')
                    return false;
            if (!plainKeys(item))
                return false;
        }
    } else if (const JsonArray *array = value.array()) {
        for (const JsonValue &item : *array)
            if (!plainKeys(item))
                return false;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzzsupport::scratch();
    const QString text = QString::fromUtf8(fuzzsupport::bytes(data, size));
    QString errors;
    const JsonValue value = json::parse(text, &errors);
    // Keys are read and written as they stand (the desk's own are column
    // names); a key with quotes, escapes or control characters cannot round-trip.
    if (value.isNothing() || !plainKeys(value))
        return 0;
    const QString written = json::toString(value);
    QString again;
    const JsonValue reread = json::parse(written, &again);
    // What was written reads back the same; and a text read without a fault
    // writes as one (nesting past the limit faults both times, so it is let be).
    if (json::toString(reread) != written || (errors.isEmpty() && !again.isEmpty()))
        std::abort();
    return 0;
}
