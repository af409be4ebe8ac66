#include "ctl/verb.h"

#include "shell/config.h"
#include "shell/setuprecords.h"
#include "synch/synch.h"
#include "synch/transport.h"

#include <QJsonArray>
#include <QJsonObject>

#include <cstdio>

namespace fenlark::ctl {

namespace {

// One silent synchronisation against the configured Server, as the desk's timer runs it.
int runSynch(const CommandLine &args)
{
    auto db = openDatabase(args);
    if (!db)
        return 1;
    BBSetup setup;
    if (!setup.fetch(*db) || setup.BBID == 0)
        return fail(QStringLiteral("the database has no property yet (bbsetup is empty)"));
    HttpTransport transport(HttpTransport::DefaultTimeoutMs, config::proxy());
    Synch synch(*db, transport);
    synch.setLogin(loginFromSetup(*db));
    synch.setLastUpdated(setup.LastUpdated);
    synch.setSynchCounter(QString::number(setup.SynchCounter));
    synch.setLogLimit(config::logLimit());
    synch.setShowForm(false);
    const bool ok = synch.synchronise();
    const SynchSummary &s = synch.summary();
    printJson(QJsonObject{{"success", ok},
                          {"locked", s.locked},
                          {"exchanges", s.exchanges},
                          {"sent", s.sent},
                          {"acknowledged", s.acknowledged},
                          {"received", s.received},
                          {"errors", QJsonArray::fromStringList(s.errors)}});
    for (const QString &error : s.errors)
        std::fprintf(stderr, "fenlarkctl synch: %s\n", qUtf8Printable(error));
    return ok ? 0 : 1;
}

} // namespace

const std::vector<Verb> &synchVerbs()
{
    static const std::vector<Verb> verbs = {
        {"synch", "synch [--db PATH]                     one silent synchronisation with the Server of vmconfig.ini", runSynch},
    };
    return verbs;
}

} // namespace fenlark::ctl
