#pragma once

#include "shell/progress.h"
#include "shell/refusal.h"

namespace fenlark {

// LibreOffice's program: $FENLARK_SOFFICE when set, else soffice or libreoffice on
// the PATH; empty when none is installed.
QString libreOfficeProgram();

// Saves a PDF copy of an .xlsx or .docx beside it (the same name with ".pdf")
// through LibreOffice in headless mode, with a profile of its own so that a
// LibreOffice the user has open is not disturbed. The PDF appears whole or not at
// all. Refused when LibreOffice is missing, fails, or the watcher stops it (its
// first start takes seconds); the document itself stays.
Result<QString> convertToPdf(const QString &document, Progress &progress);

} // namespace fenlark
