#include "ctl/verb.h"

#include "shell/config.h"
#include "shell/setuprecords.h"
#include "synch/httpfetch.h"
#include "synch/synch.h"
#include "synch/transport.h"
#include "synch/upgrade.h"

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

ServerLogin upgradeLogin(const CommandLine &args)
{
    if (!args.has(QStringLiteral("db")))
        return firstDatabaseLogin();
    auto db = openDatabase(args);
    return db ? loginFromSetup(*db) : ServerLogin{};
}

QJsonObject offerJson(const UpgradeOffer &offer)
{
    return QJsonObject{{"version", offer.version},
                       {"package", offer.package},
                       {"notes", offer.notes},
                       {"download", offer.downloadUrl},
                       {"newer", offer.newer},
                       {"running", QStringLiteral(FENLARK_VERSION)}};
}

// Asks the server whether an upgrade is allowed and what it offers; nothing is
// written. With --download: the databases are backed up and the package fetched
// into the upgrade folder, as the desk's Upgrade does.
int runUpgrade(const CommandLine &args)
{
    const ServerLogin login = upgradeLogin(args);
    if (login.bbid == 0)
        return fail(QStringLiteral("the database has no property yet (bbsetup is empty)"));
    HttpFetch fetch(HttpTransport::DefaultTimeoutMs, config::proxy());
    SoftwareUpgrade upgrade(fetch, login);
    const Outcome allowed = upgrade.check();
    if (!allowed) {
        printJson(QJsonObject{{"allowed", false}, {"reply", upgrade.reply()}});
        return refuse(allowed.refusal());
    }
    const Result<UpgradeOffer> offer = upgrade.fetchOffer();
    if (!offer)
        return refuse(offer.refusal());
    QJsonObject out = offerJson(*offer);
    out.insert(QStringLiteral("allowed"), true);
    out.insert(QStringLiteral("reply"), upgrade.reply());
    if (args.has(QStringLiteral("download")) && offer->newer) {
        const Result<UpgradeDownload> ready = upgrade.upgradeSoftware(*offer);
        if (!ready)
            return refuse(ready.refusal());
        out.insert(QStringLiteral("saved"), ready->packagePath);
        out.insert(QStringLiteral("backedUp"), QJsonArray::fromStringList(ready->backedUp));
    }
    printJson(out);
    return 0;
}

} // namespace

const std::vector<Verb> &synchVerbs()
{
    static const std::vector<Verb> verbs = {
        {"synch", "synch [--db PATH]                     one silent synchronisation with the Server of vmconfig.ini "
                  "(exit 1 failed, 3 refused by the server, 4 another run holds the lock)", runSynch},
        {"upgrade-check", "upgrade-check [--db PATH] [--download]  what the server offers for upgrade; --download backs up and fetches it", runUpgrade},
    };
    return verbs;
}

} // namespace fenlark::ctl
