#pragma once

#include <QString>
#include <QStringList>

namespace fenlark::ctl {

// The arguments of one verb: "--name value" options (repeatable), "--flag"
// switches and positional words.
class CommandLine {
public:
    // flags: the option names that take no value.
    CommandLine(const QStringList &arguments, const QStringList &flags = {});

    QString option(const QString &name, const QString &defaultValue = {}) const;
    QStringList options(const QString &name) const;
    bool has(const QString &name) const;
    // The names of the options given, in order (a repeated one more than once).
    QStringList names() const;
    const QStringList &positional() const { return m_positional; }
    // An option as a whole number; ok is false (and the result 0) when it is not one.
    int number(const QString &name, bool *ok, int defaultValue = 0) const;

private:
    QList<QPair<QString, QString>> m_options;
    QStringList m_positional;
};

} // namespace fenlark::ctl
