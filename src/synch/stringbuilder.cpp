#include "synch/stringbuilder.h"

namespace fenlark {

void StringBuilder::growFor(qsizetype needed)
{
    if (needed <= m_capacity)
        return;
    while (m_capacity < needed)
        m_capacity += m_chunkSize;
    m_text.reserve(m_capacity);
}

void StringBuilder::setText(const QString &text)
{
    if (text.isEmpty()) {
        m_text.clear();
        return;
    }
    m_text.clear();
    growFor(text.size());
    m_text.append(text);
}

void StringBuilder::clear()
{
    m_text = QString();
    m_capacity = 0;
}

void StringBuilder::append(QStringView text)
{
    growFor(m_text.size() + text.size());
    m_text.append(text);
}

bool StringBuilder::insert(qsizetype index, QStringView text)
{
    if (index < 0 || index > m_text.size())
        return false;
    growFor(m_text.size() + text.size());
    m_text.insert(index, text);
    return true;
}

bool StringBuilder::remove(qsizetype index, qsizetype length)
{
    if (index < 0 || length < 0 || index + length > m_text.size())
        return false;
    m_text.remove(index, length);
    return true;
}

qsizetype StringBuilder::find(QStringView text, qsizetype start, Qt::CaseSensitivity cs) const
{
    const qsizetype from = start < 1 ? 0 : start - 1;
    const qsizetype at = QStringView(m_text).indexOf(text, from, cs);
    return at < 0 ? 0 : at + 1;
}

} // namespace fenlark
