#include "reports/cellreference.h"

#include "shell/textformat.h"

namespace fenlark {

namespace {

constexpr int MaxRow = 1048576;
constexpr int MaxColumn = 16384;

bool isAsciiLetter(QChar c)
{
    return (c >= QLatin1Char('A') && c <= QLatin1Char('Z')) || (c >= QLatin1Char('a') && c <= QLatin1Char('z'));
}

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

// A character that can be part of a name, number or reference in a formula.
bool isWordChar(QChar c)
{
    return c.isLetterOrNumber() || c == QLatin1Char('_') || c == QLatin1Char('.') || c == QLatin1Char('$')
        || c == QLatin1Char('\\');
}

// A reference token split into its parts; false when the token is not one.
struct RefToken {
    bool absoluteColumn = false;
    QString letters;
    bool absoluteRow = false;
    int row = 0;
};

bool splitCellToken(const QString &token, RefToken &out)
{
    int i = 0;
    const int n = token.size();
    if (i < n && token.at(i) == QLatin1Char('$')) {
        out.absoluteColumn = true;
        ++i;
    }
    const int lettersStart = i;
    while (i < n && isAsciiLetter(token.at(i)))
        ++i;
    const int letterCount = i - lettersStart;
    if (letterCount < 1 || letterCount > 3)
        return false;
    out.letters = token.mid(lettersStart, letterCount).toUpper();
    if (i < n && token.at(i) == QLatin1Char('$')) {
        out.absoluteRow = true;
        ++i;
    }
    if (i >= n)
        return false;
    int row = 0;
    for (; i < n; ++i) {
        if (!isDigit(token.at(i)))
            return false;
        row = row * 10 + (token.at(i).unicode() - '0');
        if (row > MaxRow)
            return false;
    }
    if (row < 1)
        return false;
    out.row = row;
    return columnOfCellName(out.letters.toLatin1().constData()) <= MaxColumn;
}

// "$12" or "12" as a row of a whole-row range; 0 when it is not one.
int rowToken(const QString &token, bool &absolute)
{
    int i = 0;
    absolute = token.startsWith(QLatin1Char('$'));
    if (absolute)
        ++i;
    if (i >= token.size())
        return 0;
    int row = 0;
    for (; i < token.size(); ++i) {
        if (!isDigit(token.at(i)))
            return 0;
        row = row * 10 + (token.at(i).unicode() - '0');
        if (row > MaxRow)
            return 0;
    }
    return row;
}

int shifted(int row, int at, int count)
{
    return row >= at ? row + count : row;
}

} // namespace

int columnOfCellName(const char *name)
{
    int column = 0;
    for (const char *p = name; *p; ++p) {
        char c = *p;
        if (c == '$')
            continue;
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
        if (c < 'A' || c > 'Z')
            break;
        column = column * 26 + (c - 'A' + 1);
        if (column > MaxColumn * 26)
            break;
    }
    return column;
}

CellRef parseCellRef(const QString &text)
{
    RefToken token;
    if (!splitCellToken(text.trimmed(), token))
        return {};
    return CellRef{token.row, columnOfCellName(token.letters.toLatin1().constData())};
}

QString cellName(CellRef cell)
{
    return columnLetter(cell.column) + QString::number(cell.row);
}

QString absoluteCellName(CellRef cell)
{
    return QLatin1Char('$') + columnLetter(cell.column) + QLatin1Char('$') + QString::number(cell.row);
}

QString shiftFormulaRows(const QString &formula, int at, int count, const QString &sheet, bool unqualifiedIsSheet)
{
    QString out;
    out.reserve(formula.size() + 8);
    const int n = formula.size();
    int i = 0;
    // The sheet named in front of the next reference, and whether there was one.
    QString qualifier;
    bool qualified = false;
    bool external = false;
    auto applies = [&] {
        if (external)
            return false;
        return qualified ? qualifier.compare(sheet, Qt::CaseInsensitive) == 0 : unqualifiedIsSheet;
    };
    auto forgetQualifier = [&] {
        qualified = false;
        external = false;
        qualifier.clear();
    };

    while (i < n) {
        const QChar c = formula.at(i);
        if (c == QLatin1Char('"')) {
            int j = i + 1;
            while (j < n) {
                if (formula.at(j) == QLatin1Char('"')) {
                    if (j + 1 < n && formula.at(j + 1) == QLatin1Char('"')) {
                        j += 2;
                        continue;
                    }
                    break;
                }
                ++j;
            }
            out += formula.mid(i, j + 1 - i);
            i = j + 1;
            forgetQualifier();
            continue;
        }
        if (c == QLatin1Char('\'')) {
            QString name;
            int j = i + 1;
            while (j < n) {
                if (formula.at(j) == QLatin1Char('\'')) {
                    if (j + 1 < n && formula.at(j + 1) == QLatin1Char('\'')) {
                        name += QLatin1Char('\'');
                        j += 2;
                        continue;
                    }
                    break;
                }
                name += formula.at(j++);
            }
            out += formula.mid(i, j + 1 - i);
            i = j + 1;
            if (i < n && formula.at(i) == QLatin1Char('!')) {
                qualified = true;
                qualifier = name;
                external = name.startsWith(QLatin1Char('['));
                out += QLatin1Char('!');
                ++i;
            }
            continue;
        }
        if (c == QLatin1Char('[')) {
            const int close = formula.indexOf(QLatin1Char(']'), i);
            const int end = close < 0 ? n : close + 1;
            out += formula.mid(i, end - i);
            i = end;
            external = true;
            continue;
        }
        if (isWordChar(c)) {
            int j = i;
            while (j < n && isWordChar(formula.at(j)))
                ++j;
            const QString token = formula.mid(i, j - i);
            if (j < n && formula.at(j) == QLatin1Char('!')) {
                const bool wasExternal = external;
                forgetQualifier();
                qualified = true;
                qualifier = token;
                external = wasExternal;
                out += token + QLatin1Char('!');
                i = j + 1;
                continue;
            }
            const bool isFunction = j < n && formula.at(j) == QLatin1Char('(');
            RefToken ref;
            if (!isFunction && splitCellToken(token, ref)) {
                if (applies()) {
                    out += (ref.absoluteColumn ? QStringLiteral("$") : QString()) + ref.letters
                        + (ref.absoluteRow ? QStringLiteral("$") : QString()) + QString::number(shifted(ref.row, at, count));
                } else {
                    out += token;
                }
                i = j;
                // The far end of a range belongs to the same sheet.
                if (i < n && formula.at(i) == QLatin1Char(':')) {
                    out += QLatin1Char(':');
                    ++i;
                } else {
                    forgetQualifier();
                }
                continue;
            }
            bool absolute = false;
            const int firstRow = isFunction ? 0 : rowToken(token, absolute);
            if (firstRow > 0 && j < n && formula.at(j) == QLatin1Char(':')) {
                int k = j + 1;
                while (k < n && isWordChar(formula.at(k)))
                    ++k;
                bool lastAbsolute = false;
                const int lastRow = rowToken(formula.mid(j + 1, k - j - 1), lastAbsolute);
                if (lastRow > 0) {
                    const bool move = applies();
                    out += (absolute ? QStringLiteral("$") : QString())
                        + QString::number(move ? shifted(firstRow, at, count) : firstRow) + QLatin1Char(':')
                        + (lastAbsolute ? QStringLiteral("$") : QString())
                        + QString::number(move ? shifted(lastRow, at, count) : lastRow);
                    i = k;
                    forgetQualifier();
                    continue;
                }
            }
            out += token;
            i = j;
            forgetQualifier();
            continue;
        }
        out += c;
        ++i;
        if (!c.isSpace())
            forgetQualifier();
    }
    return out;
}

QString shiftRangeList(const QString &ranges, int at, int count)
{
    QStringList parts = ranges.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (QString &part : parts)
        part = shiftFormulaRows(part, at, count, QString(), true);
    return parts.join(QLatin1Char(' '));
}

} // namespace fenlark
