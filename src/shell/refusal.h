#pragma once

#include "shell/messages.h"

#include <QString>
#include <QStringList>

#include <utility>
#include <vector>
#include <variant>

namespace fenlark {

// Why the core would not do what it was asked: the string id of the message and
// its English text (with %1.. for the arguments), the title's id and text, and
// how a screen should show it. The core never shows a refusal itself: the screen
// turns it into a message box, fenlarkctl into a line on stderr, and tests
// compare its id, so rewording a text or running in Spanish changes neither.
class Refusal {
public:
    Refusal(int id, QString english, int titleId = 0, QString titleEnglish = {});

    // The next %n argument (chainable, like QString::arg).
    Refusal &arg(const QString &value);
    Refusal &arg(qint64 value);
    // Another text put after this one (a message made of several pieces): one
    // of the program's by its id, or a text as it stands (a name, a number).
    Refusal &then(int id, QString english);
    Refusal &thenText(const QString &text);
    // Shown as a notice instead of an error.
    Refusal &asInformation();

    int id() const { return m_id; }
    int titleId() const { return m_titleId; }
    const QStringList &args() const { return m_args; }
    UserMessage::Kind kind() const { return m_kind; }

    // The text and title in the current language, arguments filled in (a title may
    // name them too: "Could not create %1").
    QString text() const;
    QString title() const;
    UserMessage toMessage() const;

private:
    int m_id;
    QString m_english;
    int m_titleId;
    QString m_titleEnglish;
    QStringList m_args;
    std::vector<std::pair<int, QString>> m_pieces;
    UserMessage::Kind m_kind = UserMessage::Critical;
};

// The outcome of a core operation: its value, or the refusal that stopped it
// before anything was written.
template <class T>
class [[nodiscard]] Result {
public:
    Result(T value) : m_state(std::in_place_index<0>, std::move(value)) {}
    Result(Refusal refusal) : m_state(std::in_place_index<1>, std::move(refusal)) {}

    bool ok() const { return m_state.index() == 0; }
    explicit operator bool() const { return ok(); }

    T &value() { return std::get<0>(m_state); }
    const T &value() const { return std::get<0>(m_state); }
    T &operator*() { return value(); }
    const T &operator*() const { return value(); }
    T *operator->() { return &value(); }
    const T *operator->() const { return &value(); }

    const Refusal &refusal() const { return std::get<1>(m_state); }

private:
    std::variant<T, Refusal> m_state;
};

// An operation that gives nothing back but may be refused.
struct Done {};
using Outcome = Result<Done>;

namespace messages {
// Shows a refusal through the installed sink (criticals are also logged).
void show(const Refusal &refusal);
// A Yes/No question put together the same way (pieces, arguments): true for Yes.
bool ask(const Refusal &question, bool defaultNo = false);
} // namespace messages

} // namespace fenlark
