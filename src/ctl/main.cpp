#include "ctl/verb.h"

#include "shell/home.h"

#include <QCoreApplication>

#include <cstdio>

using namespace fenlark;
using namespace fenlark::ctl;

namespace {

std::vector<Verb> allVerbs()
{
    std::vector<Verb> verbs;
    for (const auto *group : {&shellVerbs(), &ratesVerbs(), &recordsVerbs(), &clientVerbs(), &bookingVerbs(),
                              &maintenanceVerbs(), &accountsVerbs(), &synchVerbs(), &documentVerbs(), &reportVerbs()})
        verbs.insert(verbs.end(), group->begin(), group->end());
    return verbs;
}

int usage(const std::vector<Verb> &verbs)
{
    std::fprintf(stderr, "usage: fenlarkctl VERB [--home DIR] [--db PATH] [options]\n\n");
    for (const Verb &v : verbs)
        std::fprintf(stderr, "  %s\n", v.usage);
    return 2;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QStringList args = app.arguments().mid(1);
    const QString home = Home::takeHomeArgument(args);
    Home::setPath(Home::resolve(home));

    const std::vector<Verb> verbs = allVerbs();
    if (args.isEmpty())
        return usage(verbs);
    const QString name = args.takeFirst();
    for (const Verb &v : verbs) {
        if (name == QLatin1String(v.name)) {
            try {
                return v.run(CommandLine(args, {QStringLiteral("reprice"), QStringLiteral("departures"), QStringLiteral("help"),
                                             QStringLiteral("yes"), QStringLiteral("pdf"), QStringLiteral("other-rooms"),
                                             QStringLiteral("clear"), QStringLiteral("beds"),
                                             QStringLiteral("text"), QStringLiteral("refresh"), QStringLiteral("vat"),
                                             QStringLiteral("as-new")}));
            } catch (const DatabaseError &e) {
                return fail(QStringLiteral("database error: ") + e.message());
            } catch (const std::exception &e) {
                return fail(QString::fromUtf8(e.what()));
            }
        }
    }
    std::fprintf(stderr, "fenlarkctl: unknown verb '%s'\n", qUtf8Printable(name));
    return usage(verbs);
}
