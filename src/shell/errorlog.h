#pragma once

#include <QString>

namespace fenlark {

// The program's own error log, <home>/fenlark.log: database errors and other
// failures that are shown to the user are also kept here with their time.
class ErrorLog {
public:
    static void write(const QString &text);
    static QString path();
};

} // namespace fenlark
