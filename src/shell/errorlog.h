#pragma once

#include <QString>

namespace fenlark {

// The program's own error log, <home>/fenlark.log: database errors and other
// failures that are shown to the user are also kept here with their time.
class ErrorLog {
public:
    // A log file grows to this size; then it moves to "<name>.1" (replacing the
    // older one) and starts again, so a log never takes more than twice this.
    static constexpr qint64 MaxFileBytes = 1024 * 1024;
    // One message is cut to this many bytes of UTF-8.
    static constexpr qsizetype MaxMessageBytes = 4096;

    static void write(const QString &text);
    static QString path();

    // Appends one message as one line to a log file (fenlark.log, synch.err): line
    // breaks inside it become blanks, it is cut at MaxMessageBytes, and the file
    // rolls over at MaxFileBytes.
    static void appendLine(const QString &filePath, const QString &text);
};

} // namespace fenlark
