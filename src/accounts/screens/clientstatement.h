#pragma once

#include <QString>

#include <functional>

namespace fenlark {

class Session;

// A client's statement as the desk shows it: the lines go onto the clipboard as
// text, then into a workbook in the invoice folder, which is opened with the
// desktop's spreadsheet program.
class ClientStatement {
public:
    // Opens a file with the desktop's program; false when none could.
    using Opener = std::function<bool(const QString &path)>;

    // Says so and shows nothing when the client has nothing outstanding. The
    // path of the workbook written, empty when none was.
    static QString initialise(Session &session, qint32 clientId, const Opener &open = {});
};

} // namespace fenlark
