#pragma once

// What every fuzz target needs before its first input: an application object
// (Qt's SQL driver and file functions want one) and a home folder of its own, so
// nothing a target writes lands in a real one.

#include "shell/home.h"
#include "shell/messages.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>

namespace fuzzsupport {

// Takes every message and answers every question with No.
class QuietSink : public fenlark::MessageSink {
public:
    void show(const fenlark::UserMessage &) override {}
    bool ask(const fenlark::UserMessage &) override { return false; }
};

// Sets up once per process; hands back the scratch folder.
inline const QTemporaryDir &scratch()
{
    static int argc = 1;
    static char name[] = "fuzz";
    static char *argv[] = {name, nullptr};
    static QCoreApplication *app = QCoreApplication::instance() ? nullptr : new QCoreApplication(argc, argv);
    Q_UNUSED(app);
    static QTemporaryDir dir;
    static QuietSink sink;
    static const bool ready = [] {
        fenlark::Home::setPath(dir.path());
        fenlark::messages::setSink(&sink);
        return true;
    }();
    Q_UNUSED(ready);
    return dir;
}

inline QByteArray bytes(const uint8_t *data, size_t size)
{
    return QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
}

} // namespace fuzzsupport
