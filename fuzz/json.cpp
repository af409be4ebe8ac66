// The server exchange's JSON reader on any text: it must end, and what it reads
// must write out as text that reads back to the same value.

#include "fuzzsupport.h"
#include "synch/json.h"

#include <cstdlib>

using namespace fenlark;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzzsupport::scratch();
    const QString text = QString::fromUtf8(fuzzsupport::bytes(data, size));
    QString errors;
    const JsonValue value = json::parse(text, &errors);
    if (value.isNothing())
        return 0;
    const QString written = json::toString(value);
    QString again;
    const JsonValue reread = json::parse(written, &again);
    if (!again.isEmpty() || json::toString(reread) != written)
        std::abort();
    return 0;
}
