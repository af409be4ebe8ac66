#pragma once

#include <QString>

namespace fenlark {

// A message for the person at the desk: a text, a title and its kind.
struct UserMessage {
    enum Kind { Critical, Information, Warning, Question };
    Kind kind = Information;
    QString text;
    QString title;
    bool defaultNo = false;   // a question whose careless Enter must not agree
};

// Where the core's messages go. The desk program shows them in dialogs,
// fenlarkctl writes them to stderr, tests record them.
class MessageSink {
public:
    virtual ~MessageSink() = default;
    virtual void show(const UserMessage &message) = 0;
    // A Yes/No question: true for Yes.
    virtual bool ask(const UserMessage &message) = 0;
};

namespace messages {
// Installs the sink for this process (nullptr restores the stderr sink).
void setSink(MessageSink *sink);
MessageSink &sink();

void critical(const QString &text, const QString &title);
void information(const QString &text, const QString &title);
void warning(const QString &text, const QString &title);
bool question(const QString &text, const QString &title);
// The same question with No as the default answer.
bool questionDefaultNo(const QString &text, const QString &title);
} // namespace messages

} // namespace fenlark
