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

Refusal &Refusal::asInformation()
{
    m_kind = UserMessage::Information;
    return *this;
}

QString Refusal::text() const
{
    return fillArguments(getString(m_id, m_english), m_args);
}

QString Refusal::title() const
{
    return m_titleId == 0 && m_titleEnglish.isEmpty() ? QString() : fillArguments(getString(m_titleId, m_titleEnglish), m_args);
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

} // namespace messages

} // namespace fenlark
