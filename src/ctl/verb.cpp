#include "ctl/verb.h"

#include "shell/databasefiles.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

namespace fenlark::ctl {

QString databasePath(const CommandLine &args)
{
    const QString db = args.option(QStringLiteral("db"));
    return db.isEmpty() ? getDBPath(0) : db;
}

std::unique_ptr<Database> openDatabase(const CommandLine &args)
{
    const QString path = databasePath(args);
    try {
        return Database::open(path);
    } catch (const DatabaseOpenError &e) {
        std::fprintf(stderr, "fenlarkctl: %s\n", qUtf8Printable(e.explanation()));
        return nullptr;
    }
}

void printJson(const QJsonValue &value)
{
    QByteArray text;
    if (value.isObject())
        text = QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact);
    else if (value.isArray())
        text = QJsonDocument(value.toArray()).toJson(QJsonDocument::Compact);
    else
        text = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact).mid(1).chopped(1);
    std::fwrite(text.constData(), 1, static_cast<size_t>(text.size()), stdout);
    std::fputc('\n', stdout);
}

int fail(const QString &message, int code)
{
    std::fprintf(stderr, "fenlarkctl: %s\n", qUtf8Printable(message));
    return code;
}

int refuse(const Refusal &refusal)
{
    const QString title = refusal.title();
    return fail(title.isEmpty() ? refusal.text() : title + QStringLiteral(": ") + refusal.text());
}

} // namespace fenlark::ctl
