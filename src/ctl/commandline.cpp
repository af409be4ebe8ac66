#include "ctl/commandline.h"

namespace fenlark::ctl {

CommandLine::CommandLine(const QStringList &arguments, const QStringList &flags)
{
    for (int i = 0; i < arguments.size(); ++i) {
        const QString &arg = arguments.at(i);
        if (arg.startsWith(QStringLiteral("--")) && arg.size() > 2) {
            const QString name = arg.mid(2);
            const int eq = name.indexOf(QLatin1Char('='));
            if (eq > 0)
                m_options.append({name.left(eq), name.mid(eq + 1)});
            // An option never takes the next option as its value, so one name can
            // be a flag for one verb ("checkin --out") and take a value for another
            // ("report --out FILE").
            else if (flags.contains(name) || i + 1 >= arguments.size() || arguments.at(i + 1).startsWith(QStringLiteral("--")))
                m_options.append({name, QString()});
            else
                m_options.append({name, arguments.at(++i)});
        } else {
            m_positional << arg;
        }
    }
}

QString CommandLine::option(const QString &name, const QString &defaultValue) const
{
    for (const auto &o : m_options)
        if (o.first == name)
            return o.second;
    return defaultValue;
}

QStringList CommandLine::options(const QString &name) const
{
    QStringList values;
    for (const auto &o : m_options)
        if (o.first == name)
            values << o.second;
    return values;
}

bool CommandLine::has(const QString &name) const
{
    for (const auto &o : m_options)
        if (o.first == name)
            return true;
    return false;
}

QStringList CommandLine::names() const
{
    QStringList list;
    for (const auto &o : m_options)
        list << o.first;
    return list;
}

int CommandLine::number(const QString &name, bool *ok, int defaultValue) const
{
    if (!has(name)) {
        *ok = true;
        return defaultValue;
    }
    const int value = option(name).toInt(ok);
    return *ok ? value : 0;
}

} // namespace fenlark::ctl
