#include "shell/refusal.h"

#include "shell/strings.h"

namespace fenlark {

Refusal::Refusal(int id, QString english, int titleId, QString titleEnglish)
    : m_id(id), m_english(std::move(english)), m_titleId(titleId), m_titleEnglish(std::move(titleEnglish))
{
}

Refusal &Refusal::arg(const QString &value)
{
    m_args << value;
    return *this;
}

Refusal &Refusal::arg(qint64 value)
{
    return arg(QString::number(value));
}

Refusal &Refusal::then(int id, QString english)
{
    m_pieces.emplace_back(id, std::move(english));
    return *this;
}

Refusal &Refusal::thenText(const QString &text)
{
    m_pieces.emplace_back(0, text);
    return *this;
}

Refusal &Refusal::asInformation()
{
    m_kind = UserMessage::Information;
    return *this;
}

QString Refusal::text() const
{
    QString text = fillArguments(getString(m_id, m_english), m_args);
    for (const auto &[id, english] : m_pieces)
        text += id == 0 ? english : getString(id, english);
    return text;
}

QString Refusal::title() const
{
    return fillArguments(m_titleId == 0 ? m_titleEnglish : getString(m_titleId, m_titleEnglish), m_args);
}

UserMessage Refusal::toMessage() const
{
    UserMessage message{m_kind, text(), title()};
    message.id = m_id;
    return message;
}

namespace messages {

void show(const Refusal &refusal)
{
    showMessage(refusal.toMessage());
}

bool ask(const Refusal &question, bool defaultNo)
{
    UserMessage message = question.toMessage();
    message.kind = UserMessage::Question;
    message.defaultNo = defaultNo;
    return sink().ask(message);
}

} // namespace messages

} // namespace fenlark
