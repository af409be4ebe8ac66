#pragma once

#include <QString>

namespace fenlark {

// Where Fenlark's shipped files (its own templates) are installed: the folder
// FENLARK_DATA_DIR names when set, else <prefix>/share/fenlark beside the
// program's bin folder when that exists. Empty when neither is there, as in a
// build tree: the copies compiled into the program then serve.
QString installedDataDir();

// The data folder that belongs to a program in programDir ("/usr/bin" gives
// "/usr/share/fenlark"), whether or not it exists.
QString dataDirBeside(const QString &programDir);

} // namespace fenlark
