#pragma once

#include <QString>
#include <QStringList>

namespace fenlark {

// A message for the person at the desk: a text, a title and its kind.
struct UserMessage {
    enum Kind { Critical, Information, Warning, Question };
    Kind kind = Information;
    QString text;
    QString title;
    bool defaultNo = false;   // a question whose careless Enter must not agree
    int id = 0;               // string id of the text, 0 for a text made on the spot
};

// %1, %2, ... of a text replaced by the arguments in one pass, so an argument
// that itself holds "%1" stays as it was typed.
QString fillArguments(const QString &text, const QStringList &args);

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
// Shows a message through the installed sink; a critical one is also logged.
void showMessage(const UserMessage &message);
// A notice or question with its string ids (0 for a title-less message).
void inform(int id, const QString &english, int titleId, const QString &titleEnglish, const QStringList &args = {});
bool ask(int id, const QString &english, int titleId, const QString &titleEnglish, bool defaultNo = false,
         const QStringList &args = {});

// Installs the sink for this process (nullptr restores the stderr sink).
void setSink(MessageSink *sink);
MessageSink &sink();

// Messages by string id: the text and title are looked up in the current
// language (the English given is the fallback), %1.. filled from args. A title
// id of 0 with an empty English title means no title.
void critical(int id, const QString &english, int titleId, const QString &titleEnglish, const QStringList &args = {});
void warning(int id, const QString &english, int titleId, const QString &titleEnglish, const QStringList &args = {});

// Messages whose text is not one of the program's (file contents, a server's
// reply): shown as they are, with id 0.
void critical(const QString &text, const QString &title);
void information(const QString &text, const QString &title);
void warning(const QString &text, const QString &title);
bool question(const QString &text, const QString &title);
} // namespace messages

} // namespace fenlark
