#pragma once

#include <QString>

namespace fenlark {

// An append-heavy text buffer that grows a whole chunk at a time, so that building
// a message of hundreds of kilobytes costs a handful of reallocations. Indexes and
// counts are in characters; Find answers 1-based positions and 0 for "not found".
class StringBuilder {
public:
    static constexpr qsizetype DefaultChunkSize = 8192;

    qsizetype length() const { return m_text.size(); }
    qsizetype capacity() const { return m_capacity; }
    qsizetype chunkSize() const { return m_chunkSize; }
    void setChunkSize(qsizetype characters) { m_chunkSize = characters > 0 ? characters : DefaultChunkSize; }

    QString toString() const { return m_text; }
    void setText(const QString &text);
    void clear();

    void append(QStringView text);
    // Inserts before the character at index (0 = at the front). False when the index
    // lies past the used length.
    bool insert(qsizetype index, QStringView text);
    // Removes length characters from index; false when the stretch runs past the end.
    bool remove(qsizetype index, qsizetype length);
    qsizetype find(QStringView text, qsizetype start = 1, Qt::CaseSensitivity cs = Qt::CaseSensitive) const;

private:
    void growFor(qsizetype needed);

    QString m_text;
    qsizetype m_capacity = 0;
    qsizetype m_chunkSize = DefaultChunkSize;
};

} // namespace fenlark
