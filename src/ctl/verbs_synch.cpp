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

// How "synch" ends, for scripts: each way of not synchronising has its own code.
enum SynchExit { Synchronised = 0, Failed = 1, RefusedByServer = 3, Locked = 4 };

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
                          {"refused", s.refused},
                          {"exchanges", s.exchanges},
                          {"sent", s.sent},
                          {"acknowledged", s.acknowledged},
                          {"received", s.received},
                          {"errors", QJsonArray::fromStringList(s.errors)}});
    for (const QString &error : s.errors)
        std::fprintf(stderr, "fenlarkctl synch: %s\n", qUtf8Printable(error));
    if (ok)
        return Synchronised;
    if (s.locked)
        return Locked;
    return s.refused ? RefusedByServer : Failed;
}

} // namespace

const std::vector<Verb> &synchVerbs()
{
    static const std::vector<Verb> verbs = {
        {"synch", "synch [--db PATH]                     one silent synchronisation with the Server of vmconfig.ini "
                  "(exit 1 failed, 3 refused by the server, 4 another run holds the lock)", runSynch},
    };
    return verbs;
}

} // namespace fenlark::ctl
