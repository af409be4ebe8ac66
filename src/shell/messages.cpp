#include "shell/messages.h"

#include "shell/errorlog.h"
#include "shell/strings.h"

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

QString fillArguments(const QString &text, const QStringList &args)
{
    QString out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == QLatin1Char('%') && i + 1 < text.size() && text[i + 1].isDigit() && text[i + 1] != QLatin1Char('0')) {
            qsizetype end = i + 1;
            int n = 0;
            while (end < text.size() && text[end].isDigit() && n < 10)
                n = n * 10 + text[end++].digitValue();
            if (n <= args.size()) {
                out += args[n - 1];
                i = end - 1;
                continue;
            }
        }
        out += text[i];
    }
    return out;
}

namespace messages {

void showMessage(const UserMessage &message)
{
    if (message.kind == UserMessage::Critical)
        ErrorLog::write(message.title + QStringLiteral(": ") + message.text);
    sink().show(message);
}

namespace {

UserMessage byId(UserMessage::Kind kind, int id, const QString &english, int titleId, const QString &titleEnglish,
                 const QStringList &args)
{
    UserMessage message{kind, fillArguments(id == 0 ? english : getString(id, english), args),
                        fillArguments(titleId == 0 ? titleEnglish : getString(titleId, titleEnglish), args)};
    message.id = id;
    return message;
}

} // namespace

void inform(int id, const QString &english, int titleId, const QString &titleEnglish, const QStringList &args)
{
    showMessage(byId(UserMessage::Information, id, english, titleId, titleEnglish, args));
}

void critical(int id, const QString &english, int titleId, const QString &titleEnglish, const QStringList &args)
{
    showMessage(byId(UserMessage::Critical, id, english, titleId, titleEnglish, args));
}

void warning(int id, const QString &english, int titleId, const QString &titleEnglish, const QStringList &args)
{
    showMessage(byId(UserMessage::Warning, id, english, titleId, titleEnglish, args));
}

bool ask(int id, const QString &english, int titleId, const QString &titleEnglish, bool defaultNo, const QStringList &args)
{
    UserMessage message = byId(UserMessage::Question, id, english, titleId, titleEnglish, args);
    message.defaultNo = defaultNo;
    return sink().ask(message);
}

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
    showMessage({UserMessage::Critical, text, title});
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

} // namespace messages

} // namespace fenlark
