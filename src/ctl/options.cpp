#include "ctl/options.h"

#include "ctl/verb.h"

namespace fenlark::ctl {

std::optional<qint32> keyOption(const CommandLine &args, const QString &name, const QString &what)
{
    bool ok = false;
    const int key = args.number(name, &ok);
    if (!ok || key < 1) {
        fail(QStringLiteral("--%1 must be %2").arg(name, what));
        return std::nullopt;
    }
    return key;
}

std::optional<qint32> keyWord(const QString &text, const QString &what)
{
    bool ok = false;
    const qint32 key = text.toInt(&ok);
    if (!ok || key < 1) {
        fail(QStringLiteral("%1 must be a positive whole number: %2").arg(what, text));
        return std::nullopt;
    }
    return key;
}

QDate readDate(const QString &text)
{
    return QDate::fromString(text, QStringLiteral("yyyy-MM-dd"));
}

std::optional<QDate> dateOption(const CommandLine &args, const QString &name)
{
    const QDate date = readDate(args.option(name));
    if (!date.isValid()) {
        fail(QStringLiteral("--%1 must be a date YYYY-MM-DD").arg(name));
        return std::nullopt;
    }
    return date;
}

std::optional<QDate> dateOption(const CommandLine &args, const QString &name, const QDate &absent)
{
    if (!args.has(name))
        return absent;
    return dateOption(args, name);
}

std::optional<DateSpan> fromToOptions(const CommandLine &args)
{
    const auto from = dateOption(args, QStringLiteral("from"));
    if (!from)
        return std::nullopt;
    const auto to = dateOption(args, QStringLiteral("to"));
    if (!to)
        return std::nullopt;
    return DateSpan{*from, *to};
}

QString subVerb(const CommandLine &args)
{
    return args.positional().isEmpty() ? QString() : args.positional().front();
}

} // namespace fenlark::ctl
