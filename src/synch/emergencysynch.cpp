#include "synch/emergencysynch.h"

#ifndef FENLARK_EMERGENCY_CODE
#define FENLARK_EMERGENCY_CODE "sparrow"
#endif

namespace fenlark {

bool emergencyAccessGranted(const QString &code)
{
    const QString expected = QStringLiteral(FENLARK_EMERGENCY_CODE);
    // Every character is looked at, so the time taken tells nothing of how close a guess was.
    char16_t diff = code.size() == expected.size() ? 0 : 1;
    for (qsizetype i = 0; i < expected.size(); ++i)
        diff |= (i < code.size() ? code[i].unicode() : char16_t(0xFFFF)) ^ expected[i].unicode();
    return diff == 0;
}

} // namespace fenlark
