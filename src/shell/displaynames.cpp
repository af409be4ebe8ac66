#include "shell/displaynames.h"

namespace fenlark {

namespace {

QString leftTrimmed(const QString &text)
{
    int at = 0;
    while (at < text.size() && text.at(at).isSpace())
        ++at;
    return text.mid(at);
}

} // namespace

QString clientName(const QString &title, const QString &firstName, const QString &surname, const QString &company)
{
    const QString name =
        leftTrimmed(leftTrimmed(title.trimmed() + QLatin1Char(' ') + firstName.trimmed()) + QLatin1Char(' ') + surname.trimmed());
    if (!name.isEmpty())
        return company.isEmpty() ? name : name + QStringLiteral(" @ ") + company;
    if (!company.isEmpty())
        return company;
    return QStringLiteral("<Blank>");
}

QString getDisplayName(const QString &firstName, const QString &surname, const QString &company)
{
    for (const QString *part : {&surname, &firstName, &company}) {
        if (!part->trimmed().isEmpty())
            return part->trimmed();
    }
    return QStringLiteral("???");
}

QString getShortName(const QString &firstName, const QString &surname, const QString &company)
{
    return getDisplayName(firstName, surname, company).left(3);
}

} // namespace fenlark
