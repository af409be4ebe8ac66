#pragma once

#include <QGuiApplication>

namespace fenlark {

// The hourglass for as long as it lives: a failure on the way still gives the
// pointer back.
class WaitCursor {
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor &) = delete;
    WaitCursor &operator=(const WaitCursor &) = delete;
};

} // namespace fenlark
