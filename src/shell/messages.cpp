#include "shell/messages.h"

#include "shell/errorlog.h"

#include <cstdio>

namespace fenlark {

namespace {

// Without a desk the messages go to stderr and every question is answered No,
// so nothing irreversible happens unattended.
class StderrSink : public MessageSink {
public:
    void show(const UserMessage &message) override
    {
        std::fprintf(stderr, "%s: %s\n", qUtf8Printable(message.title), qUtf8Printable(message.text));
    }
    bool ask(const UserMessage &message) override
    {
        show(message);
        return false;
    }
};

StderrSink &stderrSink()
{
    static StderrSink s;
    return s;
}

MessageSink *&installed()
{
    static MessageSink *current = nullptr;
    return current;
}

} // namespace

namespace messages {

void setSink(MessageSink *s)
{
    installed() = s;
}

MessageSink &sink()
{
    return installed() ? *installed() : stderrSink();
}

void critical(const QString &text, const QString &title)
{
    ErrorLog::write(title + QStringLiteral(": ") + text);
    sink().show({UserMessage::Critical, text, title});
}

void information(const QString &text, const QString &title)
{
    sink().show({UserMessage::Information, text, title});
}

void warning(const QString &text, const QString &title)
{
    sink().show({UserMessage::Warning, text, title});
}

bool question(const QString &text, const QString &title)
{
    return sink().ask({UserMessage::Question, text, title});
}

bool questionDefaultNo(const QString &text, const QString &title)
{
    return sink().ask({UserMessage::Question, text, title, true});
}

} // namespace messages

} // namespace fenlark
