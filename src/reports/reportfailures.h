#pragma once

#include "shell/refusal.h"

namespace fenlark {

// "The report could not be written to <path>: <reason>."
Refusal reportNotWritten(const QString &path, const QString &reason);

} // namespace fenlark
